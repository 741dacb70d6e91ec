#include "Session.h"

#include "StartFit.h"

#include "CheckPointer.h"

Morvanex::Morvanex()
    : dialog(new StartFit(nullptr, nullptr, false, {})) {
    VARNO::CheckPointer(dialog, "Morvanex", 76);
    dialog->GetConfig();
    dialog->show();
    dialog->raise();
}

Morvanex::~Morvanex() {
    dialog->close();
    dialog->DeleteWhenIdle();
    qDebug("Morvanex has left the building.");
}

void Morvanex::replay() {
    // Showing and raising alone leave a minimised window where it is.
    dialog->setWindowState(dialog->windowState() & ~Qt::WindowMinimized);
    dialog->show();
    dialog->raise();
}
