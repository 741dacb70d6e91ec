#include "fast/FastSearch.h"
#include <hwy/highway.h>
#include "Engine.h"
#include "search/Search.h"
