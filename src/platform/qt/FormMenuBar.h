// A form's menu bar, kept like the form's menu items.
//
// Captions, check marks, enabling, visibility and shortcuts follow the items; choosing one only pushes an event. The
// bar's height is fixed, and it takes whatever width the form has, with smaller titles where that is little.
#pragma once

#include "platform/EventQueue.h"

#include <QMenuBar>

#include <map>

class QAction;

namespace quarnel {

class FormMenuBar : public QMenuBar {
    Q_OBJECT
  public:
    FormMenuBar(const Form& form, EventQueue& queue, QWidget* parent);

    /// Follows a change of `item`; builds the menus anew when it is one that was added.
    void Follow(const MenuItem& item);
    /// A blocked bar takes no presses and no keys, but looks the same.
    void SetBlocked(bool blocked) { blocked_ = blocked; }
    /// The form goes away.
    void Forget();

    /// The height of any bar in pixels.
    static int Height();

  protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void FitTitles();
    void Build();
    void Build(MenuItem& item, QWidget& parent);
    static void Copy(const MenuItem& item, QAction& action);

    const Form* form_;
    EventQueue& queue_;
    std::map<const MenuItem*, QAction*> actions_;
    std::map<const MenuItem*, std::size_t> itemCounts_; ///< how many items each menu had when it was built
    bool blocked_ = false;
};

} // namespace quarnel
