// Prints the library's version text, shows that a score card works, and,
// given the path of the installed Designer plugin, that the plugin loads.

#include <Kelocontrols/Kelocontrols.h>

#include <QApplication>
#include <QJsonObject>
#include <QPluginLoader>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    std::printf("%s\n", KELOCONTROLS_VERSION_TEXT);

    KeloscoreCard card;
    card.setStyle(Kelocontrols::keloScoreCardStyle::Gauge);
    card.setValue(0.75);
    std::printf("KeloscoreCard Style=%d Value=%g Grade=%d UserMode=%d\n", int(card.Style()), card.Value(), card.grade(),
        int(card.UserMode()));

    if (argc > 1) {
        QPluginLoader plugin(QString::fromLocal8Bit(argv[1]));
        if (!plugin.load()) {
            std::fprintf(stderr, "cannot load %s: %s\n", argv[1], qPrintable(plugin.errorString()));
            return 1;
        }
        std::printf("plugin %s\n", qPrintable(plugin.metaData().value(QStringLiteral("IID")).toString()));
    }
    return 0;
}
