#pragma once

#include <VLBase/vlbase_export.h>

#include <QMenu>

#include <memory>

/// A menu for many entries and for switches.
///
/// It shows the tool tips of its actions, stays open while checkable actions are toggled, can carry
/// a title line, and gets a filter field of its own when it has many entries: typing narrows them,
/// the arrow keys and Enter choose among the rest, Escape first empties the field.
///
/// Title and field are entries of the menu only while it is shown. Belongs to the thread of the
/// user interface, as every widget.
class VLBASE_EXPORT Q4Menu : public QMenu
{
    Q_OBJECT

public:
    explicit Q4Menu(QWidget* parent = nullptr);
    explicit Q4Menu(const QString& title, QWidget* parent = nullptr);
    ~Q4Menu() override;

    /// The title line; empty: none, as at first. An open menu shows it the next time.
    void setHeading(const QString& text);
    QString heading() const;

    /// Whether the menu stays open over toggles of checkable actions, by mouse and keyboard; true
    /// unless set.
    void setKeepsOpen(bool keeps);
    bool keepsOpen() const;

    /// From how many visible entries on, separators not counted, there is a filter field; 20 unless
    /// set; 0 and below: never. Actions that their owner hid stay hidden whatever is typed.
    void setFilterThreshold(int entries);
    int filterThreshold() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void actionEvent(QActionEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Filter;

    void open();
    void close();
    void addFilterWhenMany();
    bool toggles(const QAction* action) const;
    bool toggleByKey(const QKeyEvent& event);
    void moveBy(QKeyEvent& event);

    QString m_heading;
    bool m_keepsOpen = true;
    int m_filterThreshold = 20;
    bool m_isOpen = false;
    bool m_isPressed = false; ///< the mouse, over this menu
    QAction* m_headingAction = nullptr;
    std::unique_ptr<Filter> m_filter; ///< while there is a field
};
