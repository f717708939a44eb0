#include "tests/support/ShownCursor.h"

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

namespace {

template<typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template<typename T>
Reply<T> owned(T *reply)
{
    return {reply, &std::free};
}

} // namespace

QImage shownCursor()
{
    // A connection of its own for each look: Qt's may be busy, and tests look seldom.
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
            xcb_connect(nullptr, nullptr), &xcb_disconnect);
    xcb_connection_t *c = connection.get();
    const auto version = owned(xcb_xfixes_query_version_reply(
            c, xcb_xfixes_query_version(c, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION),
            nullptr));
    const auto image =
            owned(xcb_xfixes_get_cursor_image_reply(c, xcb_xfixes_get_cursor_image(c), nullptr));
    if (!version || !image)
        return {};

    const auto *pixels =
            reinterpret_cast<const uchar *>(xcb_xfixes_get_cursor_image_cursor_image(image.get()));
    return QImage(pixels, image->width, image->height, QImage::Format_ARGB32_Premultiplied).copy();
}
