// The interface as a C++ compiler sees it. Needs no library, so that it can be compiled for targets that have
// none here.
#include "LayoutChecks.h"
#include "SuiteLayoutChecks.h"
#include "ValueChecks.h"
