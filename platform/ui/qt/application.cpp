// SPDX-License-Identifier: MIT
#include "platform/ui/qt/application.h"

#include <QApplication>
#include <clocale>
#include <cstring>
#include <memory>

namespace zrui {
namespace {

void Swallow(QtMsgType, const QMessageLogContext&, const QString&) {}

// The toolkit ends the program when none of its platforms starts. Its platform without a display always
// starts; it is tried last, so reaching it means that the others failed.
std::string PlatformsToTry() {
    const char* wanted = std::getenv("QT_QPA_PLATFORM");
    if (wanted && *wanted) return wanted;
    return std::getenv("WAYLAND_DISPLAY") ? "wayland;xcb" : "xcb";
}

}  // namespace

bool StartApplication(std::string& error) {
    if (QCoreApplication::instance()) {
        if (qobject_cast<QApplication*>(QCoreApplication::instance())) return true;
        error = "cannot open a window: the program runs without a display";
        return false;
    }
    const std::string platforms = PlatformsToTry();
    static std::string arguments[] = {program_invocation_short_name, "-platform", platforms + ";offscreen"};
    static char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
    static int argc = 3;

    // The toolkit sets the process's locale, which would change how the program prints and reads numbers.
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    const QtMessageHandler handler = qInstallMessageHandler(Swallow);
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(handler);
    std::setlocale(LC_ALL, locale.c_str());

    if (QGuiApplication::platformName() == "offscreen" && platforms.find("offscreen") == std::string::npos) {
        error = "cannot open a window: no display can be reached";
        return false;
    }
    QApplication::setQuitOnLastWindowClosed(false);
    static_cast<void>(application.release());  // lives as long as the process
    return true;
}

}  // namespace zrui
