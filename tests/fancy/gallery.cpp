#include "tests/fancy/privates.h"

#include <QAction>
#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>
#include <QVBoxLayout>

/*
    Shows every state of the painted button and both rows of the bar in one window, for looking at.
    With a file name as argument it saves a screenshot of the window there and ends.
*/

namespace {
enum class State { Idle, Hovered, Pressed, PressedAndHovered, Disabled, DisabledAndHovered };

struct Column
{
    const char *title;
    State state;
};

struct Row
{
    const char *title;
    bool round;
    bool border;
    bool icon;
    const char *text;
    QColor normal;
};

const QColor PanelGrey(216, 217, 218);
const QColor Accent(190, 208, 236);
const QColor LightAccent(222, 232, 247);
const QColor DarkAccent(140, 170, 214);

QIcon someIcon()
{
    return QIcon(QStringLiteral(":/client/resources/settings.svg"));
}

FancyButton *createButton(const Row &row, State state)
{
    auto *button = new FancyButton(nullptr);
    button->setFixedSize(72, 34);
    button->setRound(row.round);
    button->setTextColor(Qt::black);
    button->setHasBorder(row.border);
    button->setText(QString::fromUtf8(row.text));
    if (row.icon)
        button->setIcon(someIcon());
    if (row.normal.isValid()) {
        button->setNormalColor(row.normal);
        button->setHoverColor(LightAccent);
        button->setPressColor(DarkAccent);
    }
    FancyButtonPrivate *data = ButtonData::of(*button);
    data->m_bMouseHover = state == State::Hovered || state == State::PressedAndHovered
                          || state == State::DisabledAndHovered;
    data->m_bMousePress = state == State::Pressed || state == State::PressedAndHovered;
    button->setDisabled(state == State::Disabled || state == State::DisabledAndHovered);
    return button;
}

QWidget *createStates()
{
    const QVector<Column> columns {
            {"idle", State::Idle},         {"hovered", State::Hovered},
            {"pressed", State::Pressed},   {"pressed over\nhovered", State::PressedAndHovered},
            {"disabled", State::Disabled}, {"disabled while\nhovered", State::DisabledAndHovered}};
    const QVector<Row> rows {{"icon, default colours", false, true, true, "", QColor()},
                             {"icon, no border", false, false, true, "", QColor()},
                             {"text, no border", false, false, false, "Text", QColor()},
                             {"icon, all colours", false, false, true, "", Accent},
                             {"text, all colours", false, false, false, "Text", Accent},
                             {"round, all colours", true, false, true, "", Accent}};

    auto *states = new QWidget;
    auto *grid = new QGridLayout(states);
    grid->setContentsMargins(16, 12, 16, 12);
    grid->setSpacing(12);
    for (int column = 0; column < columns.size(); ++column) {
        auto *title = new QLabel(QString::fromUtf8(columns.at(column).title));
        title->setAlignment(Qt::AlignCenter);
        grid->addWidget(title, 0, column + 1);
    }
    for (int row = 0; row < rows.size(); ++row) {
        grid->addWidget(new QLabel(QString::fromUtf8(rows.at(row).title)), row + 1, 0);
        for (int column = 0; column < columns.size(); ++column) {
            grid->addWidget(createButton(rows.at(row), columns.at(column).state), row + 1,
                            column + 1, Qt::AlignCenter);
        }
    }
    return states;
}

FancyBar *createBar(QWidget *window, QAction *action)
{
    auto *bar = new FancyBar(window);
    bar->setBackgroundColor(PanelGrey);
    bar->setTitleBarHeight(36);
    bar->updateWidgetFlags();
    auto *caption = new QLabel(QStringLiteral("Title row"));
    caption->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addAdditionalControl(caption, FancyBar::TitlePosition, 12);
    FancyButton *button = bar->addAdditionalControl(action, FancyBar::TitlePosition, 8);
    button->setColor(Qt::black);
    button->setMinimumWidth(60);
    return bar;
}

QWidget *createMenuRow(FancyBar *bar, QAction *action)
{
    FancyBarPrivate *data = BarData::of(*bar);
    data->createMenuWidget();
    auto *menuBar = new QMenuBar;
    // Styles draw a line beneath a menu bar, and some text in a colour of their own.
    menuBar->setStyleSheet(
            QStringLiteral("QMenuBar{background:transparent;border:none;color:black;}"));
    menuBar->addAction(QStringLiteral("Menu row"));
    menuBar->addAction(QStringLiteral("Menu bar"));
    data->m_menuBarArea->addWidget(menuBar);
    auto *appButton = new FancyButton(nullptr);
    appButton->setIcon(someIcon());
    data->m_appButtonLayout->addWidget(appButton);
    FancyButton *button = bar->addAdditionalControl(action, FancyBar::MenuPosition, 0);
    button->setColor(Qt::black);
    button->setMinimumWidth(60);
    return data->m_menuWidget;
}
} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);

    QMenu menu;
    menu.addAction(QStringLiteral("First entry"));
    menu.addAction(QStringLiteral("Second entry"));
    QAction withMenu(QStringLiteral("Opens"));
    withMenu.setMenu(&menu);

    // The bar and the colours of the buttons are light, whatever the desktop's palette is.
    QWidget window(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowMinMaxButtonsHint
                                    | Qt::WindowCloseButtonHint);
    window.setPalette(QPalette(PanelGrey, QColor(239, 239, 239)));
    auto *layout = new QVBoxLayout(&window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    FancyBar *bar = createBar(&window, &withMenu);
    layout->addWidget(bar);
    QWidget *menuRow = createMenuRow(bar, &withMenu);
    layout->addWidget(menuRow);
    BarData::of(*bar)->showMenuBar(true);
    layout->addWidget(createStates());
    QObject::connect(bar->titleBar(), &FancyTitleBar::closeClicked, &window, &QWidget::close);
    window.show();

    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 1) {
        QTimer::singleShot(0, &window, [&] {
            QCoreApplication::exit(window.grab().save(arguments.at(1)) ? 0 : 1);
        });
    }
    return QCoreApplication::exec();
}
