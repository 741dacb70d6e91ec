#include "cli/Help.h"
#include "fast/FastSearch.h"
#include <QWidget>
#include <iostream>
#include "formats/maps/MapFile.h"
#include "hosts/common/Shared.h"
#include "placement/Places.h"
#include "search/Search.h"
