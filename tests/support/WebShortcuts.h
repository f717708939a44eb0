#pragma once

#include <array>

/*!
    A button of the run-status page that opens a web page, and the address that it opens. Whoever
    includes this links panel_web_hosts.
*/
struct WebShortcut
{
    const char *button;
    const char *address;
};

//! All of them, in the order of the page.
inline constexpr std::array WebShortcuts = {
        WebShortcut {"kqfwdt", "https://" PANEL_SERVICE_HALL_HOST "/#/software-selfHelp"},
        WebShortcut {"kqzsk", "https://" PANEL_KNOWLEDGE_BASE_HOST "/kqwiki/fullTextSearch.xhtml"},
};
