#include "package/c/LentControls.h"

#include <map>
#include <utility>

#include "package/c/Abi.h"
#include "package/c/HostTable.h"

namespace kiv::c {
namespace {

// A function of the control's table, checked, with the table's context as the first argument.
#define KIV_LENT(function, ...) \
  (Needed(this->Table().function, #function)(this->Table().context, this->Address() __VA_OPT__(, ) __VA_ARGS__))

/// What is common to the controls of all kinds.
class LentAddress {
 public:
  LentAddress(SharedTable table, KivControl* control) : table_(std::move(table)), control_(control) {}
  virtual ~LentAddress() = default;
  LentAddress(const LentAddress&) = delete;
  LentAddress& operator=(const LentAddress&) = delete;

  [[nodiscard]] const KivHostTable& Table() const noexcept { return *table_; }
  [[nodiscard]] const SharedTable& Shared() const noexcept { return table_; }
  [[nodiscard]] KivControl* Address() const noexcept { return control_; }

 private:
  SharedTable table_;
  KivControl* control_;
};

template <class Interface>
class LentControlOf : public Interface, public LentAddress {
 public:
  LentControlOf(SharedTable table, KivControl* control, bool isContainer)
      : LentAddress(std::move(table), control), isContainer_(isContainer) {}

  [[nodiscard]] TextView ClassName() const override {
    className_ =
        WrittenText([this](char* buffer, std::size_t room) { return KIV_LENT(className, buffer, room); }, "className");
    return className_;
  }
  [[nodiscard]] Text Name() const override {
    return WrittenText([this](char* buffer, std::size_t room) { return KIV_LENT(name, buffer, room); }, "name");
  }
  [[nodiscard]] host::Rect Bounds() const override {
    KivRect bounds{};
    KIV_LENT(bounds, &bounds);
    return {bounds.left, bounds.top, bounds.right, bounds.bottom};
  }
  void SetBounds(const host::Rect& bounds) override {
    const KivRect wanted{bounds.left, bounds.top, bounds.right, bounds.bottom};
    KIV_LENT(setBounds, &wanted);
  }
  [[nodiscard]] host::Alignment Aligned() const override { return host::Alignment{KIV_LENT(alignment)}; }
  [[nodiscard]] host::Anchors Anchored() const override {
    const std::int32_t sum = KIV_LENT(anchors);
    return {(sum & KIV_ANCHOR_LEFT) != 0, (sum & KIV_ANCHOR_TOP) != 0, (sum & KIV_ANCHOR_RIGHT) != 0,
            (sum & KIV_ANCHOR_BOTTOM) != 0};
  }
  [[nodiscard]] bool Visible() const override { return KIV_LENT(visible) != 0; }
  [[nodiscard]] bool IsContainer() const override { return isContainer_; }
  void ScaleBy(std::int32_t multiplier, std::int32_t divisor) override { KIV_LENT(scaleBy, multiplier, divisor); }

 private:
  bool isContainer_;
  mutable Text className_;  // what ClassName has given out
};

class LentLabel : public LentControlOf<host::Label> {
 public:
  using LentControlOf::LentControlOf;

  [[nodiscard]] Text Caption() const override {
    return WrittenText([this](char* buffer, std::size_t room) { return KIV_LENT(caption, buffer, room); }, "caption");
  }
  void SetCaption(TextView caption) override { KIV_LENT(setCaption, caption.data(), caption.size()); }
  void Repaint() override { KIV_LENT(repaint); }
};

/// The resize handlers that applications hold, by the number that they were given as `data`. One may still be called
/// when its panel's manager has gone: then its number is no longer here.
class Handlers {
 public:
  void* Add(host::ResizeHandler handler, host::Object* sender) {
    handlers_.emplace(++last_, Entry{std::move(handler), sender});
    return reinterpret_cast<void*>(last_);
  }
  void Remove(void* data) { handlers_.erase(reinterpret_cast<std::uintptr_t>(data)); }
  void Call(void* data) const {
    const auto found = handlers_.find(reinterpret_cast<std::uintptr_t>(data));
    if (found != handlers_.end()) {
      const Entry entry = found->second;  // it may be removed meanwhile
      entry.handler(entry.sender);
    }
  }

 private:
  struct Entry {
    host::ResizeHandler handler;
    host::Object* sender;
  };
  std::map<std::uintptr_t, Entry> handlers_;
  std::uintptr_t last_ = 0;
};

Handlers& LentHandlers() {
  static Handlers handlers;
  return handlers;
}

extern "C" KivStatus KivCallResizeHandler(void* data) {
  return Run([=] { LentHandlers().Call(data); });
}

class LentPanel : public LentControlOf<host::Panel> {
 public:
  using LentControlOf::LentControlOf;
  ~LentPanel() override { LentHandlers().Remove(data_); }

  [[nodiscard]] std::vector<host::Control*> Children() const override {
    const auto addresses = Listed<KivControl*>(
        [this](KivControl** controls, std::size_t capacity) { return KIV_LENT(children, controls, capacity); });
    std::vector<host::Control*> children;
    children.reserve(addresses.size());
    for (KivControl* const address : addresses) {
      std::unique_ptr<host::Control>& child = children_[address];
      if (child == nullptr) {
        child = MakeLentControl(Shared(), address);
      }
      children.push_back(child.get());
    }
    return children;
  }
  [[nodiscard]] std::int32_t ClientWidth() const override { return KIV_LENT(clientWidth); }
  [[nodiscard]] bool OffersResizeHandler() const override { return KIV_LENT(resizeHandler) != KIV_RESIZE_NOT_OFFERED; }
  [[nodiscard]] bool HasResizeHandler() const override { return KIV_LENT(resizeHandler) == KIV_RESIZE_TAKEN; }
  void SetResizeHandler(host::ResizeHandler handler) override {
    void* const before = data_;
    const bool some = static_cast<bool>(handler);
    data_ = some ? LentHandlers().Add(std::move(handler), this) : nullptr;
    KIV_LENT(setResizeHandler, some ? &KivCallResizeHandler : nullptr, data_);
    LentHandlers().Remove(before);
  }

 private:
  mutable std::map<KivControl*, std::unique_ptr<host::Control>> children_;
  void* data_ = nullptr;
};

/// Made by a form for another thread. It has the table's functions itself: the table may have been replaced meanwhile.
class LentWindow : public host::Window {
 public:
  LentWindow(SharedTable table, void* window) : table_(std::move(table)), window_(window) {}

  [[nodiscard]] bool Visible() const noexcept override {
    return window_ != nullptr && table_->windowVisible(table_->context, window_) != 0;
  }
  void Maximise() noexcept override {
    if (window_ != nullptr) {
      table_->maximiseWindow(table_->context, window_);
    }
  }

 private:
  SharedTable table_;
  void* window_;
};

class LentForm : public LentControlOf<host::Form> {
 public:
  using LentControlOf::LentControlOf;

  [[nodiscard]] std::shared_ptr<host::Window> GetWindow() override {
    Needed(Table().windowVisible, "windowVisible");
    Needed(Table().maximiseWindow, "maximiseWindow");
    return std::make_shared<LentWindow>(Shared(), KIV_LENT(window));
  }
};

}  // namespace

std::unique_ptr<host::Control> MakeLentControl(const SharedTable& table, KivControl* control) {
  if (control == nullptr) {
    throw ArgumentError("control: pointer nul");
  }
  const std::int32_t kind = Needed(table->kind, "kind")(table->context, control);
  switch (kind) {
    case KIV_CONTROL_PANEL:
      return std::make_unique<LentPanel>(table, control, true);
    case KIV_CONTROL_LABEL:
      return std::make_unique<LentLabel>(table, control, false);
    case KIV_CONTROL_FORM:
      return std::make_unique<LentForm>(table, control, true);
    case KIV_CONTROL_OTHER:
    case KIV_CONTROL_CONTAINER:
      return std::make_unique<LentControlOf<host::Control>>(table, control, kind == KIV_CONTROL_CONTAINER);
    default:
      throw Error("Aplicatia da un tip de control necunoscut: " + std::to_string(kind));
  }
}

KivControl* AddressOf(const host::Control& lent) {
  return dynamic_cast<const LentAddress&>(lent).Address();
}

}  // namespace kiv::c
