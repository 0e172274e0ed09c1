// SPDX-License-Identifier: MIT
#include "commanddispatcher.h"
#include "console.h"
#include "privatetemp.h"
#include "rawarguments.h"

#include <QGuiApplication>

int main(int argc, char *argv[])
{
    // Rendering needs a GUI application, but the tool never shows a window:
    // a platform named in the environment could abort for want of a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Console::installMessageFilter();
    QGuiApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("lxdoc"));
    QCoreApplication::setApplicationVersion(QStringLiteral(LXDOC_VERSION));
    PrivateTemp::installSignalHandlers();
    PrivateTemp::removeLeftovers();
    const QString unusable = RawArguments(argc, argv).unusableName();
    if (!unusable.isEmpty())
        return Console::fail(QStringLiteral("cannot use '%1': the name is not valid UTF-8").arg(unusable));
    return Console::finish(CommandDispatcher().run(QCoreApplication::arguments()));
}
