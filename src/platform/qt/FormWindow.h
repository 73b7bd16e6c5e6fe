// The window of one form: frame, menu bar, canvas.
//
// Follows the form's properties and never resizes by hand. Only its closing runs program code: a framed form's
// OnQueryUnload, at once, from inside the toolkit.
#pragma once

#include "platform/EventQueue.h"
#include "platform/qt/FormCanvas.h"
#include "platform/qt/FormMenuBar.h"

#include <QMainWindow>

#include <span>

namespace quarnel {

class FormWindow : public QMainWindow {
    Q_OBJECT
  public:
    /// `queue` must outlive the window; `form` must do so, too, or until Forget() is called.
    FormWindow(Form& form, EventQueue& queue);

    FormCanvas& Canvas() { return *canvas_; }

    /// Sizes in pixels. They follow from the form's properties and are the same whether or not the window is shown:
    /// the frame counts as nothing, the menu bar with its height.
    Size InnerSize() const;
    Size OuterSize() const;

    void Follow(Control& control);
    void Follow(MenuItem& item);

    /// Takes no presses for its menus while another form is shown modally.
    void SetBlocked(bool blocked);
    /// Cuts the window to the union of `rectangles`.
    void Shape(std::span<const Rectangle> rectangles);
    /// Puts the window in the middle of `owner` (of its screen where there is none), above it.
    void PlaceAbove(QWidget* owner);
    /// The form goes away; the window is taken off the screen and deletes itself later.
    void Forget();

  protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;

  private:
    void FollowForm();
    void FollowPosition();

    Form* form_;
    EventQueue& queue_;
    FormCanvas* canvas_;             // owned by this window, as the toolkit does it
    FormMenuBar* menuBar_ = nullptr; // likewise; null for a form without menus
    QPoint followedPosition_;        ///< the form's Left and Top when the window was last moved to them
    bool adoptsPosition_ = false;    ///< the form is being told where the window was moved to
};

} // namespace quarnel
