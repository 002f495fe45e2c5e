#include "GalleryWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kelocontrols gallery"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shows every Kelocontrols widget at work."));
    parser.addHelpOption();
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
        QStringLiteral("Render every page to PNG files in <folder> and quit."), QStringLiteral("folder"));
    parser.addOption(screenshot);
    parser.process(app);

    GalleryWindow window;
    if (parser.isSet(screenshot)) {
        window.show();
        QTextStream out(stdout);
        const QStringList files = window.renderPages(parser.value(screenshot));
        for (const QString &file : files) {
            out << file << '\n';
        }
        return files.isEmpty() ? 1 : 0;
    }
    window.show();
    return app.exec();
}
