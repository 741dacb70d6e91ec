#include <hwy/highway.h>
#include "fast/FastSearch.h"
#include "search/Search.h"
