#pragma once

#include "app/context/k.h"
#include "bench/benchapplication.h"
#include "bench/fixture.h"
#include "widgets/boxes/messagebox.h"

namespace bench {

/// As runIn(), logged in, with fonts and colours of the program and boxes that answer themselves.
inline int runWindowIn(BenchApplication *application, const QString &parent,
                       const std::function<void(const QString &folder)> &work)
{
    return runIn(parent, [&](const QString &folder) {
        K::instance()->initApplication(application);
        QApplication::setQuitOnLastWindowClosed(false);
        MessageBox::setScripted(true);
        logIn();
        work(folder);
    });
}

} // namespace bench
