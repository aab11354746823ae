// Badly formatted on purpose: clang-format must object.
int   answer( ){return 42 ;}
