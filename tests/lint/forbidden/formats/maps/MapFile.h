#include "Engine.h"
#include "search/Search.h"
#include <QWidget>
#include "base/Numbers.h"
#include "formats/maps/MapFile.h"
#include "Interface.h"
#include <gemmi/model.hpp>
