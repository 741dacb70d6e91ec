#include <QWidget>
#include <QtWidgets/QWidget>
#include "Dialog.h"
#  include "../../formats/MapFile.h"
#include "Interface.h"
#include <hwy/highway.h>
