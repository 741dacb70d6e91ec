#include "formats/maps/MapFile.h"
#include <hwy/highway.h>
#include "search/Search.h"
