#include "platform/qt/AccessibleForm.h"

#include "platform/qt/Conversions.h"
#include "platform/qt/FormCanvas.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWindow>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace quarnel {

namespace {

QRect OnScreen(const FormCanvas& canvas, const QRectF& area) {
    const QRect rect = area.toAlignedRect();
    return {canvas.mapToGlobal(rect.topLeft()), rect.size()};
}

// Something in a canvas that has no window of its own. It is asked about only while its canvas lives.
class Part : public QAccessibleInterface, public QAccessibleActionInterface {
  public:
    explicit Part(FormCanvas& canvas) : canvas_(canvas) {}

    bool isValid() const override { return canvas_.ShownForm() != nullptr; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return canvas_.window()->windowHandle(); }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(&canvas_); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void setText(QAccessible::Text, const QString&) override {}
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name && isValid() ? ToQString(Name()) : QString();
    }
    QRect rect() const override { return isValid() ? OnScreen(canvas_, Area()) : QRect(); }
    QAccessible::State state() const override { return {}; }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }

    QStringList actionNames() const override { return CanBePressed() ? QStringList{pressAction()} : QStringList(); }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& action) override {
        if (!isValid() || !CanBePressed() || action != pressAction()) return;
        canvas_.PushClick(Area().center().x(), Area().center().y());
    }

  protected:
    virtual Text Name() const = 0;
    virtual QRectF Area() const = 0; ///< in the canvas
    virtual bool CanBePressed() const { return false; }
    Form& ShownForm() const { return *canvas_.ShownForm(); }
    const FormCanvas& Canvas() const { return canvas_; }

  private:
    FormCanvas& canvas_;
};

// Whether a press on the control does something.
bool Presses(const Control& control) {
    return control.OnClick || control.OnMouseUp;
}

bool IsLight(const Control& control) {
    return !control.Signals.Get().empty();
}

bool IsLit(const Control& control) {
    return IsLight(control) && control.Visible;
}

// The name of a control, empty for one that says nothing.
Text NameOf(const Control& control) {
    if (IsLight(control)) return control.Signals;
    return control.ToolTip.Get().empty() ? control.Caption : control.ToolTip;
}

class ControlPart : public Part {
  public:
    ControlPart(FormCanvas& canvas, const Control& control) : Part(canvas), control_(control) {}

    QAccessible::Role role() const override {
        // Of two radio buttons one is on, too; a light of its own has no states that a screen reader would say.
        if (IsLight(control_)) return QAccessible::RadioButton;
        if (Presses(control_)) return QAccessible::Button;
        return control_.Kind == ControlKind::Label ? QAccessible::StaticText : QAccessible::Graphic;
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.disabled = !control_.Enabled;
        state.invisible = !control_.IsShown() && !IsLight(control_);
        state.checkable = IsLight(control_);
        state.checked = IsLit(control_);
        return state;
    }

  protected:
    Text Name() const override { return NameOf(control_); }
    bool CanBePressed() const override { return Presses(control_) && control_.Enabled && control_.IsShown(); }
    QRectF Area() const override {
        QRectF area(0, 0, control_.Width, control_.Height);
        for (const Control* c = &control_; c->Kind != ControlKind::Form; c = c->Parent()) {
            area.translate(c->Left, c->Top);
        }
        return area;
    }

  private:
    const Control& control_;
};

class DescribedPart : public Part {
  public:
    DescribedPart(FormCanvas& canvas, std::size_t index) : Part(canvas), index_(index) {}

    QAccessible::Role role() const override { return QAccessible::Button; }

  protected:
    Text Name() const override { return Item().Name; }
    bool CanBePressed() const override { return true; }
    QRectF Area() const override {
        const AccessibleItem item = Item();
        return {item.Left, item.Top, item.Width, item.Height};
    }

  private:
    AccessibleItem Item() const {
        const auto items = ShownForm().OnDescribe ? ShownForm().OnDescribe() : std::vector<AccessibleItem>();
        return index_ < items.size() ? items[index_] : AccessibleItem();
    }

    std::size_t index_;
};

class AnnouncementPart : public Part {
  public:
    using Part::Part;
    QAccessible::Role role() const override { return QAccessible::StatusBar; }

  protected:
    Text Name() const override { return ShownForm().Announcement(); }
    QRectF Area() const override { return Canvas().rect(); }
};

// The parts in the order in which they are read: controls, described items, the announcement.
class AccessibleCanvas : public QAccessibleWidget {
  public:
    explicit AccessibleCanvas(FormCanvas& canvas) : QAccessibleWidget(&canvas, QAccessible::Client), canvas_(canvas) {}
    ~AccessibleCanvas() override {
        for (const auto& [control, known] : controls_) QAccessible::deleteAccessibleInterface(known.Id);
        for (const Known& known : described_) QAccessible::deleteAccessibleInterface(known.Id);
        if (announcement_ != 0) QAccessible::deleteAccessibleInterface(announcement_);
    }

    int childCount() const override { return static_cast<int>(Parts().size()); }
    QAccessibleInterface* child(int index) const override {
        const auto parts = Parts();
        const bool inside = index >= 0 && static_cast<std::size_t>(index) < parts.size();
        return inside ? QAccessible::accessibleInterface(parts[static_cast<std::size_t>(index)]) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto parts = Parts();
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (QAccessible::accessibleInterface(parts[i]) == child) return static_cast<int>(i);
        }
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        for (const QAccessible::Id id : Parts()) {
            QAccessibleInterface* part = QAccessible::accessibleInterface(id);
            if (part->role() != QAccessible::StatusBar && part->rect().contains(x, y)) return part;
        }
        return nullptr;
    }
    QAccessibleInterface* Announcement() const {
        if (announcement_ == 0) announcement_ = Register(std::make_unique<AnnouncementPart>(canvas_));
        return QAccessible::accessibleInterface(announcement_);
    }

    void TellChanges() {
        for (auto& [control, known] : controls_) Tell(known, NameOf(*control), IsLit(*control));
        const auto items = Items();
        for (std::size_t i = 0; i < std::min(items.size(), described_.size()); ++i) {
            Tell(described_[i], items[i].Name, false);
        }
    }

  private:
    // A part, and what screen readers know of it.
    struct Known {
        QAccessible::Id Id = 0;
        Text Name;
        bool Lit = false;
    };

    static void Tell(Known& known, const Text& name, bool lit) {
        QAccessibleInterface* part = QAccessible::accessibleInterface(known.Id);
        if (std::exchange(known.Name, name) != name) {
            QAccessibleEvent renamed(part, QAccessible::NameChanged);
            QAccessible::updateAccessibility(&renamed);
        }
        if (std::exchange(known.Lit, lit) != lit) {
            QAccessible::State changed;
            changed.checked = true;
            QAccessibleStateChangeEvent switched(part, changed);
            QAccessible::updateAccessibility(&switched);
        }
    }

    // The toolkit owns what is registered, until it is told to delete it.
    static QAccessible::Id Register(std::unique_ptr<Part> part) {
        // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the toolkit keeps it until then
        return QAccessible::registerAccessibleInterface(part.release());
    }

    std::vector<AccessibleItem> Items() const {
        const Form* form = canvas_.ShownForm();
        return form != nullptr && form->OnDescribe ? form->OnDescribe() : std::vector<AccessibleItem>();
    }

    void AddControls(const Control& parent, std::vector<QAccessible::Id>& parts) const {
        for (const Control* child : parent.Children()) {
            if (!child->Visible.Get() && !IsLight(*child)) continue;
            const Text name = NameOf(*child);
            if (!name.empty() && name != canvas_.ShownForm()->Caption.Get()) {
                Known& known = controls_[child];
                if (known.Id == 0) {
                    known = {Register(std::make_unique<ControlPart>(canvas_, *child)), name, IsLit(*child)};
                }
                parts.push_back(known.Id);
            }
            if (child->Visible) AddControls(*child, parts);
        }
    }

    std::vector<QAccessible::Id> Parts() const {
        std::vector<QAccessible::Id> parts;
        const Form* form = canvas_.ShownForm();
        if (form == nullptr) return parts;
        AddControls(*form, parts);
        const auto items = Items();
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (i == described_.size()) {
                described_.push_back({Register(std::make_unique<DescribedPart>(canvas_, i)), items[i].Name});
            }
            parts.push_back(described_[i].Id);
        }
        Announcement();
        parts.push_back(announcement_);
        return parts;
    }

    FormCanvas& canvas_;
    // Made when first asked for and kept, because screen readers remember them.
    mutable std::map<const Control*, Known> controls_;
    mutable std::vector<Known> described_;
    mutable QAccessible::Id announcement_ = 0;
};

class AccessibleDialog : public QAccessibleWidget {
  public:
    explicit AccessibleDialog(QWidget& window) : QAccessibleWidget(&window, QAccessible::Dialog) {}
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = true;
        return state;
    }
};

QAccessibleInterface* MakeAccessible(const QString& className, QObject* object) {
    if (className == QLatin1String("quarnel::FormCanvas")) {
        return new AccessibleCanvas(*static_cast<FormCanvas*>(object));
    }
    if (className != QLatin1String("quarnel::FormWindow")) return nullptr;
    auto& window = *static_cast<QWidget*>(object);
    return window.windowFlags().testFlag(Qt::FramelessWindowHint) ? new AccessibleDialog(window) : nullptr;
}

} // namespace

void DescribeFormsToScreenReaders() {
    QAccessible::installFactory(MakeAccessible);
}

void TellChanges(FormCanvas& canvas, bool announcement) {
    auto* description = dynamic_cast<AccessibleCanvas*>(QAccessible::queryAccessibleInterface(&canvas));
    if (description == nullptr || canvas.ShownForm() == nullptr) return;
    description->TellChanges();
    if (!announcement) return;
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent spoken(&canvas, ToQString(canvas.ShownForm()->Announcement()));
#else
    // The announcement's part has the text as its name.
    QAccessibleEvent spoken(description->Announcement(), QAccessible::NameChanged);
#endif
    QAccessible::updateAccessibility(&spoken);
}

} // namespace quarnel
