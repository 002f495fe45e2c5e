// kelo-interface CLASS
//
// Creates a control of the named class offscreen and prints its public
// interface: class information, properties with their defaults and help
// strings, methods, events with their dispatch ids, and the enumerations
// they use. `kelo-interface --list` prints the known class names.

#include "InterfaceDescription.h"
#include "Kelochameleon.h"
#include "KelofileView.h"
#include "KelofolderView.h"
#include "KelolistBox.h"
#include "KeloscoreCard.h"

#include <QApplication>

#include <cstdio>
#include <functional>
#include <map>
#include <memory>

namespace {

using Factory = std::function<QWidget *()>;

/// The controls this tool can create, by class name.
const std::map<QString, Factory> &controlFactories()
{
    static const std::map<QString, Factory> factories{
        {QStringLiteral("Kelochameleon"), [] { return new Kelochameleon; }},
        {QStringLiteral("KelofileView"), [] { return new KelofileView; }},
        {QStringLiteral("KelofolderView"), [] { return new KelofolderView; }},
        {QStringLiteral("KelolistBox"), [] { return new KelolistBox; }},
        {QStringLiteral("KeloscoreCard"), [] { return new KeloscoreCard; }},
    };
    return factories;
}

void printKnownClasses(FILE *out)
{
    for (const auto &entry : controlFactories()) {
        std::fprintf(out, "%s\n", qPrintable(entry.first));
    }
}

} // namespace

int main(int argc, char *argv[])
{
    // The control is only inspected, never shown: no display needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);

    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() != 1 || arguments.first() == QLatin1String("--help")) {
        std::fprintf(stderr, "usage: kelo-interface CLASS | --list\n");
        return 2;
    }
    if (arguments.first() == QLatin1String("--list")) {
        printKnownClasses(stdout);
        return 0;
    }
    const auto factory = controlFactories().find(arguments.first());
    if (factory == controlFactories().end()) {
        std::fprintf(
            stderr, "kelo-interface: unknown control class \"%s\"; known classes:\n", qPrintable(arguments.first()));
        printKnownClasses(stderr);
        return 1;
    }
    const std::unique_ptr<QWidget> control(factory->second());
    std::fputs(Kelocontrols::describeInterface(*control).toUtf8().constData(), stdout);
    return 0;
}
