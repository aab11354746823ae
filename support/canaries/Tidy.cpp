// Wrong on purpose: clang-tidy must object to the NULL and to the assignment in the condition.
#include <cstddef>

int *nothing()
{
    int *pointer = NULL;
    return pointer;
}
