#pragma once

#include <array>

/*!
    A button of the run-status page that opens a web page, the file of its icon in the resources,
   and the address that it opens. Whoever includes this links panel_web_hosts.
*/
struct WebShortcut
{
    const char *button;
    const char *icon;
    const char *address;
};

//! All of them, in the order of the page.
inline constexpr std::array WebShortcuts = {
        WebShortcut {"kqfwdt", "dt.ico", "https://" PANEL_SERVICE_HALL_HOST "/#/software-selfHelp"},
        WebShortcut {"kqzsk", "zsk.ico",
                     "https://" PANEL_KNOWLEDGE_BASE_HOST "/kqwiki/fullTextSearch.xhtml"},
};
