#include "app/TextScale.h"

#include <QByteArray>
#include <QList>
#include <QRect>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>

#include <xcb/randr.h>
#include <xcb/xcb.h>

namespace {

constexpr qreal BaseDpi = 96;
//! Smaller differences come from monitors and rounding, not from a choice of the user's.
constexpr qreal LeastScaledDpi = 110;
constexpr qreal ScaleStep = 0.25;

constexpr const char *ScaleVariable = "QT_SCALE_FACTOR";
constexpr const char *FontVariable = "QT_FONT_DPI";

constexpr const char *DpiResource = "Xft.dpi:";
constexpr const char *WorkAreaAtom = "_NET_WORKAREA";
//! In units of four bytes: more than any resource database holds.
constexpr uint32_t MaximumPropertyLength = 1 << 20;

/*!
    Whether the environment names a scale, or has Qt find one. Plasma sets
    QT_AUTO_SCREEN_SCALE_FACTOR to 0 in every session: that is no choice of a user's.
*/
bool userScales()
{
    const auto isPositive = [](const QByteArray &number) { return number.toDouble() > 0; };
    const QList<QByteArray> screens = qgetenv("QT_SCREEN_SCALE_FACTORS").split(';');
    bool isInteger = false;
    bool isSet = false;
    const int automatic = qEnvironmentVariableIntValue("QT_AUTO_SCREEN_SCALE_FACTOR", &isSet);
    const QByteArray formerFactor = qgetenv("QT_DEVICE_PIXEL_RATIO");
    const bool isAuto = isSet ? automatic > 0 : formerFactor.toLower() == "auto";
    qEnvironmentVariableIntValue("QT_ENABLE_HIGHDPI_SCALING", &isInteger);
    return isAuto || isInteger || isPositive(qgetenv(ScaleVariable)) || isPositive(formerFactor)
           || std::any_of(screens.begin(), screens.end(), [&](const QByteArray &screen) {
                  // With or without the screen's name: "HDMI-1=1.5".
                  return isPositive(screen.mid(screen.lastIndexOf('=') + 1));
              });
}

//! The X display that Qt will connect to; null stands for the one that DISPLAY names.
const char *displayName(int argc, char **argv)
{
    const char *result = nullptr;
    for (int i = 1; i + 1 < argc; ++i) {
        if (qstrcmp(argv[i], "-display") == 0 || qstrcmp(argv[i], "--display") == 0)
            result = argv[++i];
    }
    return result;
}

struct Free
{
    void operator()(void *reply) const { std::free(reply); }
};
template<typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

struct Disconnect
{
    void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

QByteArray property(xcb_connection_t *server, xcb_window_t window, xcb_atom_t name)
{
    const auto cookie = xcb_get_property(server, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0,
                                         MaximumPropertyLength);
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(server, cookie, nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

//! The value of Xft.dpi in the database \a resources, 0 where there is none.
qreal textDpi(const QByteArray &resources)
{
    const QList<QByteArray> lines = resources.split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(DpiResource))
            return line.mid(int(qstrlen(DpiResource))).trimmed().toDouble();
    }
    return 0;
}

//! The rectangle of the primary monitor, or of the first; null where the server doesn't tell.
QRect primaryMonitor(xcb_connection_t *server, xcb_window_t root)
{
    // Without the extension a request of it would end the connection.
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(server, &xcb_randr_id);
    if (!extension || !extension->present)
        return {};
    // RANDR knows monitors since 1.5. A server with an older one answers with an error, not a
    // reply.
    const Owned<xcb_randr_get_monitors_reply_t> reply(
            xcb_randr_get_monitors_reply(server, xcb_randr_get_monitors(server, root, 1), nullptr));
    if (!reply)
        return {};
    QRect result;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it)) {
        if (result.isNull() || it.data->primary)
            result = QRect(it.data->x, it.data->y, it.data->width, it.data->height);
    }
    return result;
}

//! What the window manager leaves to windows, all monitors together; null where it doesn't tell.
QRect managedArea(xcb_connection_t *server, xcb_window_t root)
{
    const Owned<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
            server, xcb_intern_atom(server, 1, uint16_t(qstrlen(WorkAreaAtom)), WorkAreaAtom),
            nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return {};
    // One rectangle for each virtual desktop. The first stands for all.
    const QByteArray value = property(server, root, atom->atom);
    std::array<int32_t, 4> area = {};
    if (size_t(value.size()) < sizeof area)
        return {};
    std::copy_n(value.constData(), sizeof area, reinterpret_cast<char *>(area.data()));
    return {area[0], area[1], area[2], area[3]};
}

struct Desktop
{
    qreal dpi = 0;
    QSize workArea;
};

Desktop askServer(const char *display)
{
    int number = 0;
    const Connection connection(xcb_connect(display, &number));
    xcb_connection_t *server = connection.get();
    if (xcb_connection_has_error(server) != 0)
        return {};
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(server));
    // All X screens share the resources of the first.
    const xcb_window_t resourceRoot = screens.data->root;
    while (number-- > 0 && screens.rem > 1)
        xcb_screen_next(&screens);
    const xcb_screen_t *screen = screens.data;

    QRect workArea(0, 0, screen->width_in_pixels, screen->height_in_pixels);
    for (const QRect &limit :
         {primaryMonitor(server, screen->root), managedArea(server, screen->root)}) {
        if (workArea.intersects(limit))
            workArea &= limit;
    }
    return {textDpi(property(server, resourceRoot, XCB_ATOM_RESOURCE_MANAGER)), workArea.size()};
}

} // namespace

TextScale::TextScale(const QSize &windowSize, int argc, char **argv)
{
    if (userScales())
        return;

    const Desktop desktop = askServer(displayName(argc, argv));
    const qreal scale = forWindow(desktop.dpi, windowSize, desktop.workArea);
    if (scale > 1)
        set(ScaleVariable, QByteArray::number(scale, 'g', 17));
    // The scale covers the fonts. Without this Qt would enlarge them once more, and also by the
    // resolution of the server itself.
    if (qEnvironmentVariableIsEmpty(FontVariable))
        set(FontVariable, QByteArray::number(BaseDpi));
}

void TextScale::keepFromChildren()
{
    for (const char *variable : qAsConst(m_variables))
        qunsetenv(variable);
    m_variables.clear();
}

qreal TextScale::forWindow(qreal dpi, const QSize &windowSize, const QSize &workArea)
{
    // Negated, so that NaN gives 1.
    if (!(dpi >= LeastScaledDpi))
        return 1;

    const qreal wanted = dpi / BaseDpi;
    if (workArea.isEmpty())
        return wanted;
    const qreal limit = std::min(qreal(workArea.width()) / windowSize.width(),
                                 qreal(workArea.height()) / windowSize.height());
    if (wanted <= limit)
        return wanted;
    return std::max(1.0, std::floor(limit / ScaleStep) * ScaleStep);
}

void TextScale::set(const char *variable, const QByteArray &value)
{
    if (qputenv(variable, value))
        m_variables.append(variable);
}
