#include "commanddispatcher.h"
#include "console.h"

#include <QGuiApplication>

int main(int argc, char *argv[])
{
    // Rendering needs a GUI application, but the tool never shows a window.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    Console::installMessageFilter();
    QGuiApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("lxdoc"));
    QCoreApplication::setApplicationVersion(QStringLiteral("1.0.0"));
    return CommandDispatcher().run(QCoreApplication::arguments());
}
