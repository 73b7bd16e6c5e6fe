#include "platform/qt/AccessibleForm.h"

#include "platform/qt/Conversions.h"
#include "platform/qt/FormCanvas.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWindow>

#include <map>
#include <memory>

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

const Control* FirstLabel(const Control& parent) {
    for (const Control* child : parent.Children()) {
        if (!child->Visible.Get()) continue;
        if (child->Kind == ControlKind::Label && !child->Caption.Get().empty()) return child;
        if (const Control* label = FirstLabel(*child)) return label;
    }
    return nullptr;
}

// Whether a press on the control does something.
bool Presses(const Control& control) {
    return control.OnClick || control.OnMouseUp;
}

// The name of a control, empty for one that says nothing.
Text NameOf(const Control& control) {
    if (!control.ToolTip.Get().empty()) return control.ToolTip;
    if (!control.Caption.Get().empty()) return control.Caption;
    if (!control.OnClick) return {};
    const Control* label = FirstLabel(control);
    return label != nullptr ? label->Caption.Get() : FromAscii(control.Name);
}

class ControlPart : public Part {
  public:
    ControlPart(FormCanvas& canvas, const Control& control) : Part(canvas), control_(control) {}

    QAccessible::Role role() const override {
        if (Presses(control_)) return QAccessible::Button;
        return control_.Kind == ControlKind::Label ? QAccessible::StaticText : QAccessible::Graphic;
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.disabled = !control_.Enabled;
        state.invisible = !control_.IsShown();
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
    Text Name() const override { return ShownForm().Announcement; }
    QRectF Area() const override { return Canvas().rect(); }
};

// The parts in the order in which they are read: controls, described items, the announcement.
class AccessibleCanvas : public QAccessibleWidget {
  public:
    explicit AccessibleCanvas(FormCanvas& canvas) : QAccessibleWidget(&canvas, QAccessible::Client), canvas_(canvas) {}
    ~AccessibleCanvas() override {
        for (const auto& [control, id] : controls_) QAccessible::deleteAccessibleInterface(id);
        for (const QAccessible::Id id : described_) QAccessible::deleteAccessibleInterface(id);
        if (announcement_ != 0) QAccessible::deleteAccessibleInterface(announcement_);
    }

    QString text(QAccessible::Text kind) const override {
        const Form* form = canvas_.ShownForm();
        return kind == QAccessible::Name && form != nullptr ? ToQString(form->Caption.Get()) : QString();
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

  private:
    // The toolkit owns what is registered, until it is told to delete it.
    static QAccessible::Id Register(std::unique_ptr<Part> part) {
        // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the toolkit keeps it until then
        return QAccessible::registerAccessibleInterface(part.release());
    }

    void AddControls(const Control& parent, std::vector<QAccessible::Id>& parts) const {
        for (const Control* child : parent.Children()) {
            if (!child->Visible.Get()) continue;
            if (!NameOf(*child).empty()) {
                auto& id = controls_[child];
                if (id == 0) id = Register(std::make_unique<ControlPart>(canvas_, *child));
                parts.push_back(id);
            }
            AddControls(*child, parts);
        }
    }

    std::vector<QAccessible::Id> Parts() const {
        std::vector<QAccessible::Id> parts;
        const Form* form = canvas_.ShownForm();
        if (form == nullptr) return parts;
        AddControls(*form, parts);
        const std::size_t items = form->OnDescribe ? form->OnDescribe().size() : 0;
        while (described_.size() < items) {
            described_.push_back(Register(std::make_unique<DescribedPart>(canvas_, described_.size())));
        }
        parts.insert(parts.end(), described_.begin(), described_.begin() + static_cast<std::ptrdiff_t>(items));
        Announcement();
        parts.push_back(announcement_);
        return parts;
    }

    FormCanvas& canvas_;
    // Made when first asked for and kept, because screen readers remember them.
    mutable std::map<const Control*, QAccessible::Id> controls_;
    mutable std::vector<QAccessible::Id> described_;
    mutable QAccessible::Id announcement_ = 0;
};

QAccessibleInterface* MakeAccessible(const QString& className, QObject* object) {
    auto* canvas = className == QLatin1String("quarnel::FormCanvas") ? qobject_cast<FormCanvas*>(object) : nullptr;
    return canvas != nullptr ? new AccessibleCanvas(*canvas) : nullptr;
}

} // namespace

void DescribeFormsToScreenReaders() {
    QAccessible::installFactory(MakeAccessible);
}

void Announce(FormCanvas& canvas, const Text& text) {
    if (!QAccessible::isActive()) return;
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent spoken(&canvas, ToQString(text));
    QAccessible::updateAccessibility(&spoken);
#else
    static_cast<void>(text);
    // The announcement's part has the text as its name.
    auto* description = dynamic_cast<AccessibleCanvas*>(QAccessible::queryAccessibleInterface(&canvas));
    if (description == nullptr) return;
    QAccessibleEvent renamed(description->Announcement(), QAccessible::NameChanged);
    QAccessible::updateAccessibility(&renamed);
#endif
}

} // namespace quarnel
