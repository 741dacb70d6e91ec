#include "Listener.h"

#include "Space.h"

Listener::Listener() {
    VARNO::Space::instance()->Changes().Subscribe(this);
}

Listener::~Listener() {
    VARNO::Space::instance()->Changes().Unsubscribe(this);
}

void Listener::Notify(const VARNO::DataPointBase &notice) {
    notices.push_back({notice.GetActionState(), notice.GetNodes()});
}
