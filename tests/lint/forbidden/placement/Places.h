#include "formats/maps/MapFile.h"
#include "Engine.h"
#include <gemmi/model.hpp>
#include <QWidget>
#include "Implementation.h"
#include "placement/Places.h"
#include <gemmi/third_party/pocketfft_hdronly.h>
