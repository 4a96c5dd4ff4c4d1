#include "q4menu.h"

#include <QActionEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QScopedValueRollback>
#include <QWidgetAction>

#include <algorithm>

namespace {

QString plainText(const QAction& action)
{
    // "&&" is an ampersand, "&" underlines what follows, and a tab begins the shortcut.
    QString text = action.text().section(u'\t', 0, 0);
    for (qsizetype at = text.indexOf(u'&'); at >= 0; at = text.indexOf(u'&', at + 1))
        text.remove(at, 1);
    return text;
}

bool isEntry(const QAction* action)
{
    return action->isVisible() && !action->isSeparator();
}

bool isEnter(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Select;
}

bool isVertical(int key)
{
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_Home || key == Qt::Key_End ||
           key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

} // namespace

/// The field and what it hides.
class Q4Menu::Filter
{
public:
    explicit Filter(Q4Menu& menu)
        : m_menu(menu)
        , m_action(new QWidgetAction(&menu))
        , m_field(new QLineEdit)
    {
        m_field->setPlaceholderText(QCoreApplication::translate("Q4Menu", "Filter"));
        m_field->setAccessibleName(m_field->placeholderText());
        m_field->setClearButtonEnabled(true);
        m_field->installEventFilter(&menu);
        m_action->setDefaultWidget(m_field);
        QObject::connect(m_field, &QLineEdit::textChanged, m_action, [this] { narrow(); });
    }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;
    ~Filter()
    {
        showAll();
        // The field may be the one whose key is being handled.
        m_field->removeEventFilter(&m_menu);
        m_menu.removeAction(m_action);
        m_action->deleteLater();
    }

    QAction* action() const { return m_action; }
    QLineEdit* field() const { return m_field; }
    bool isNarrowing() const { return m_isNarrowing; }

    /// Shows the entries that contain what was typed, and makes the first of them the active one.
    void narrow()
    {
        const QScopedValueRollback<bool> guard(m_isNarrowing, true);
        const QString typed = m_field->text().trimmed();
        QAction* first = nullptr;
        for (QAction* action : m_menu.actions()) {
            const bool isOwn = action == m_action || action == m_menu.m_headingAction;
            if (isOwn || (!action->isVisible() && !m_hidden.contains(action)))
                continue;
            const bool fits =
                typed.isEmpty() ||
                (!action->isSeparator() && plainText(*action).contains(typed, Qt::CaseInsensitive));
            setShown(action, fits);
            // A submenu would open at once, under the typing hand.
            if (fits && !first && isEntry(action) && action->isEnabled() && !action->menu())
                first = action;
        }
        m_menu.setActiveAction(typed.isEmpty() ? nullptr : first);
        m_field->setFocus();
    }

private:
    void setShown(QAction* action, bool shown)
    {
        if (shown)
            m_hidden.removeAll(action);
        else if (!m_hidden.contains(action))
            m_hidden.append(action);
        action->setVisible(shown);
    }

    void showAll()
    {
        const QScopedValueRollback<bool> guard(m_isNarrowing, true);
        for (const QPointer<QAction>& action : std::exchange(m_hidden, {})) {
            if (action)
                action->setVisible(true);
        }
    }

    Q4Menu& m_menu;
    QWidgetAction* m_action;
    QLineEdit* m_field;
    QList<QPointer<QAction>> m_hidden; // by us
    bool m_isNarrowing = false;
};

Q4Menu::Q4Menu(QWidget* parent)
    : Q4Menu(QString(), parent)
{
}

Q4Menu::Q4Menu(const QString& title, QWidget* parent)
    : QMenu(title, parent)
{
    setToolTipsVisible(true);
    connect(this, &QMenu::aboutToShow, this, &Q4Menu::open);
    connect(this, &QMenu::aboutToHide, this, &Q4Menu::close);
}

Q4Menu::~Q4Menu()
{
    close();
}

void Q4Menu::setHeading(const QString& text)
{
    m_heading = text;
}

QString Q4Menu::heading() const
{
    return m_heading;
}

void Q4Menu::setKeepsOpen(bool keeps)
{
    m_keepsOpen = keeps;
}

bool Q4Menu::keepsOpen() const
{
    return m_keepsOpen;
}

void Q4Menu::setFilterThreshold(int entries)
{
    m_filterThreshold = entries;
}

int Q4Menu::filterThreshold() const
{
    return m_filterThreshold;
}

void Q4Menu::open()
{
    close();
    m_isOpen = true;
    m_isPressed = false;
    addFilterWhenMany();
    if (m_heading.isEmpty())
        return;
    auto* const label = new QLabel(m_heading);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    label->setMargin(4);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    auto* const action = new QWidgetAction(this);
    action->setDefaultWidget(label);
    action->setEnabled(false);
    label->setEnabled(true); // Not chosen, but not grey either.
    m_headingAction = action;
    insertAction(actions().value(0), action);
}

void Q4Menu::close()
{
    m_isOpen = false;
    m_filter.reset();
    if (!m_headingAction)
        return;
    removeAction(m_headingAction);
    m_headingAction->deleteLater();
    m_headingAction = nullptr;
}

void Q4Menu::addFilterWhenMany()
{
    const QList<QAction*> all = actions();
    const auto entries = std::count_if(all.begin(), all.end(), [this](const QAction* action) {
        return action != m_headingAction && isEntry(action);
    });
    if (m_filter || m_filterThreshold <= 0 || entries < m_filterThreshold)
        return;
    m_filter = std::make_unique<Filter>(*this);
    const bool isHeaded = m_headingAction && !all.isEmpty();
    insertAction(all.value(isHeaded ? 1 : 0), m_filter->action());
    m_filter->field()->setFocus();
}

// Who fills the menu when it is about to show may come behind us, and may go on later.
void Q4Menu::actionEvent(QActionEvent* event)
{
    QMenu::actionEvent(event);
    if (!m_isOpen || event->action() == m_headingAction ||
        (m_filter && (m_filter->isNarrowing() || event->action() == m_filter->action())))
        return;
    if (event->type() == QEvent::ActionAdded)
        addFilterWhenMany();
    if (m_filter && event->type() != QEvent::ActionRemoved && !m_filter->field()->text().isEmpty())
        m_filter->narrow();
}

bool Q4Menu::toggles(const QAction* action) const
{
    return m_keepsOpen && action && action->isCheckable() && action->isEnabled() &&
           action->isVisible() && !action->menu();
}

void Q4Menu::mousePressEvent(QMouseEvent* event)
{
    m_isPressed = rect().contains(event->position().toPoint());
    QMenu::mousePressEvent(event);
}

void Q4Menu::mouseReleaseEvent(QMouseEvent* event)
{
    QAction* const action = actionAt(event->position().toPoint());
    const bool wasPressed = std::exchange(m_isPressed, false);
    if (wasPressed && toggles(action))
        action->trigger();
    else
        QMenu::mouseReleaseEvent(event);
}

bool Q4Menu::toggleByKey(const QKeyEvent& event)
{
    QAction* action = activeAction();
    const bool isSpace = event.key() == Qt::Key_Space && !m_filter;
    if (!isEnter(event.key()) && !isSpace) {
        // An underlined letter; with a field letters are for that.
        const bool isPlain = (event.modifiers() & ~(Qt::ShiftModifier | Qt::AltModifier)) == 0;
        if (m_filter || !isPlain || event.text().isEmpty())
            return false;
        const QKeySequence letter(Qt::ALT | Qt::Key(event.text().at(0).toUpper().unicode()));
        QList<QAction*> named;
        for (QAction* entry : actions()) {
            if (isEntry(entry) && entry->isEnabled() &&
                QKeySequence::mnemonic(entry->text()) == letter)
                named << entry;
        }
        action = named.size() == 1 ? named.constFirst() : nullptr;
    }
    if (!toggles(action))
        return false;
    if (action != activeAction())
        setActiveAction(action);
    action->trigger();
    return true;
}

// The field is no entry to be chosen.
void Q4Menu::moveBy(QKeyEvent& event)
{
    QMenu::keyPressEvent(&event);
    if (m_filter && activeAction() == m_filter->action())
        QMenu::keyPressEvent(&event);
    if (m_filter)
        m_filter->field()->setFocus();
}

void Q4Menu::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (toggleByKey(*event)) {
        event->accept();
    } else if (isVertical(key)) {
        moveBy(*event);
    } else if (!m_filter || isEnter(key)) {
        QMenu::keyPressEvent(event);
    } else if (key == Qt::Key_Escape && !m_filter->field()->text().isEmpty()) {
        m_filter->field()->clear();
        event->accept();
    } else if ((!event->text().isEmpty() && event->text().at(0).isPrint()) ||
               key == Qt::Key_Backspace || key == Qt::Key_Delete) {
        QCoreApplication::sendEvent(m_filter->field(), event);
    } else {
        QMenu::keyPressEvent(event);
    }
}

// The field has the focus; what is not for it moves in the menu.
bool Q4Menu::eventFilter(QObject* watched, QEvent* event)
{
    if (m_filter && watched == m_filter->field() && event->type() == QEvent::KeyPress) {
        auto* const key = static_cast<QKeyEvent*>(event);
        const bool goesIntoSubmenu =
            key->key() == Qt::Key_Right && activeAction() && activeAction()->menu();
        const bool isForMenu = isEnter(key->key()) || key->key() == Qt::Key_Escape ||
                               key->key() == Qt::Key_Up || key->key() == Qt::Key_Down ||
                               key->key() == Qt::Key_PageUp || key->key() == Qt::Key_PageDown ||
                               goesIntoSubmenu;
        if (isForMenu) {
            keyPressEvent(key);
            return true;
        }
    }
    return QMenu::eventFilter(watched, event);
}
