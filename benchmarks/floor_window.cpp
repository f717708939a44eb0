// The floor of start-up and memory: an empty window of the panel's size with one Chinese label.
//
//   floor_window [lean]     lean: without the OpenGL driver that Qt loads for every window

#include <QApplication>
#include <QLabel>
#include <QWidget>

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "xcb");
    if (argc > 1 && qstrcmp(argv[1], "lean") == 0)
        qputenv("QT_XCB_GL_INTEGRATION", "none");
    QApplication app(argc, argv);

    QWidget window;
    window.setFixedSize(800, 600);
    QLabel label(QStringLiteral("朔川统一服务"), &window);
    label.move(20, 20);
    window.show();

    return QApplication::exec();
}
