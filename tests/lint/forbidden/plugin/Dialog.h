#include "formats/maps/MapFile.h"
#include <gemmi/model.hpp>
#include "fast/FastSearch.h"
#include <QWidget>
#include "Engine.h"
#include "search/Search.h"
