#pragma once

#include "shell/ServiceContainer.h"

class OverviewForm;

namespace Bench {

//! Sets the environment that the panel's own start-up sets before it makes its application object.
void setUpEnvironment();

//! Makes the application what the panel's own start-up makes it: its icon and its font.
void setUpApplication();

//! Handles all events that are there, and those that come of it, until none is left.
void handleEvents();

/*!
    The panel's window, shown and painted, with a run-status page that refreshes on demand only.
    It needs an application object, and a daemon for the page to find.
*/
class PanelWindow
{
public:
    PanelWindow();

    //! One refresh of the run-status page, without the repaint that follows.
    void refresh();

    //! The shown window.
    ServiceContainer *container() { return &m_container; }
    OverviewForm *page() { return m_page; }

private:
    ServiceContainer m_container;
    OverviewForm *m_page;
};

} // namespace Bench
