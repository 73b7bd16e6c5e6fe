#include "platform/qt/FormMenuBar.h"

#include "platform/qt/Conversions.h"

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QFontInfo>
#include <QKeySequence>
#include <QMenu>

namespace quarnel {

namespace {

// Close together, so that all menus have room in the smallest window. With a ground of their own neither bar nor titles
// get an edge from the desktop's style, which would not meet.
const QString BarStyle =
    QStringLiteral("QMenuBar { spacing: 0px; background: palette(window); border-bottom: 1px solid palette(mid); }"
                   "QMenuBar::item { padding: 2px 4px; background: transparent; color: palette(window-text); }"
                   "QMenuBar::item:selected { background: palette(highlight); color: palette(highlighted-text); }");

} // namespace

FormMenuBar::FormMenuBar(const Form& form, EventQueue& queue, QWidget* parent)
    : QMenuBar(parent), form_(&form), queue_(queue) {
    setNativeMenuBar(false); // a bar outside the window would change the window's size
    setStyleSheet(BarStyle);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setFixedHeight(Height());
    Build();
}

int FormMenuBar::Height() {
    static const int height = [] {
        QMenuBar sample;
        sample.setNativeMenuBar(false);
        sample.setStyleSheet(BarStyle);
        sample.addAction(QStringLiteral("X"));
        sample.ensurePolished();
        return sample.sizeHint().height();
    }();
    return height;
}

void FormMenuBar::Build() {
    clear();
    qDeleteAll(findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
    actions_.clear();
    itemCounts_.clear();
    for (MenuItem* menu : form_->Menus()) Build(*menu, *this);
}

void FormMenuBar::Build(MenuItem& item, QWidget& parent) {
    QAction* action = nullptr;
    if (item.Items().empty()) {
        action = new QAction(&parent);
        connect(action, &QAction::triggered, this, [this, &item, action] {
            Copy(item, *action); // the toolkit has just turned a check mark over that is the program's
            if (form_ == nullptr) return;
            queue_.Push(MenuClickEvent{&item});
            QCoreApplication::eventDispatcher()->wakeUp(); // as for the pointer's events
        });
    } else {
        auto* menu = new QMenu(&parent);
        for (MenuItem* child : item.Items()) Build(*child, *menu);
        action = menu->menuAction();
    }
    action->setObjectName(QString::fromStdString(item.Name));
    Copy(item, *action);
    parent.addAction(action);
    actions_[&item] = action;
    itemCounts_[&item] = item.Items().size();
}

void FormMenuBar::Copy(const MenuItem& item, QAction& action) {
    action.setSeparator(item.IsSeparator());
    if (!item.IsSeparator()) action.setText(ToQString(item.Caption.Get()).replace(u'&', QStringLiteral("&&")));
    action.setEnabled(item.Enabled);
    action.setVisible(item.Visible);
    action.setCheckable(item.Checked);
    action.setChecked(item.Checked);
    action.setShortcut(QKeySequence::fromString(ToQString(item.Shortcut), QKeySequence::PortableText));
}

void FormMenuBar::Follow(const MenuItem& item) {
    const auto known = actions_.find(&item);
    const bool grown = known == actions_.end() || itemCounts_[&item] != item.Items().size();
    if (grown) {
        Build();
    } else {
        Copy(item, *known->second);
    }
}

// Only as wide a bar as the window: where the desktop's font has no room in it, its next smaller sizes are tried.
void FormMenuBar::FitTitles() {
    constexpr int SmallestPixels = 9;
    QFont font = QApplication::font(this);
    for (int pixels = QFontInfo(font).pixelSize(); pixels >= SmallestPixels; --pixels) {
        font.setPixelSize(pixels);
        setFont(font);
        if (sizeHint().width() <= width()) break;
    }
}

void FormMenuBar::resizeEvent(QResizeEvent* event) {
    QMenuBar::resizeEvent(event);
    FitTitles();
}

void FormMenuBar::Forget() {
    form_ = nullptr;
    clear();
}

bool FormMenuBar::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::KeyPress:
    case QEvent::Shortcut:
        if (blocked_) return true;
        break;
    default:
        break;
    }
    return QMenuBar::event(event);
}

} // namespace quarnel
