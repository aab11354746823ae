#include "AuthStore.h"
