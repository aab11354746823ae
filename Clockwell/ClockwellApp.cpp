#include "ClockwellApp.h"
