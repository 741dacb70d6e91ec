#include <QWidget>
#include <QtWidgets/QWidget>
#include "Dialog.h"
#  include "../../formats/maps/MapFile.h"
#include "fast/FastSearch.h"
#include "Interface.h"
#include "search/Search.h"
