/// @file
/// Alignment, anchors, scaling and resize handlers for frameworks that have none of their own: an adapter says where
/// its control is and how to move it, the rest is here. The built-in hosts stand on it.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "kivtools/Host/Controls.h"

namespace kiv::host {

/// Width and height in pixels.
struct Size {
  std::int32_t width = 0;
  std::int32_t height = 0;

  friend constexpr bool operator==(const Size&, const Size&) = default;
};

/// A control in the tree of containers. When a container's inner area changes its children are laid out: those along
/// the upper edge first, then the lower, left and right edges, each edge in the order in which they lie there;
/// client-aligned ones take what is left. Children without alignment follow their anchors, from where they were put
/// last; with no anchor in a direction they move by half. Hidden children take no place.
///
/// Either of a container and its child may go first.
class KIV_API LayoutNode {
 public:
  LayoutNode(const LayoutNode&) = delete;
  LayoutNode& operator=(const LayoutNode&) = delete;
  virtual ~LayoutNode();

  [[nodiscard]] Alignment GetAlignment() const noexcept { return alignment_; }
  void SetAlignment(Alignment alignment);
  [[nodiscard]] Anchors GetAnchors() const noexcept { return anchors_; }
  void SetAnchors(Anchors anchors);
  /// Puts the control there, as its alignment allows, and lays out its neighbours.
  void PutAt(const Rect& bounds);
  /// See Control::ScaleBy. A control of its own, as a form, keeps its place and its frame. Halves round away from zero.
  void Scale(std::int32_t multiplier, std::int32_t divisor);

 protected:
  /// Becomes the last child of the container; null for none.
  explicit LayoutNode(LayoutNode* container);

  /// The same object as a control.
  [[nodiscard]] virtual Control& AsControl() = 0;
  /// Where the framework has the control now.
  [[nodiscard]] virtual Rect Place() const = 0;
  /// Lets the framework move it. A change of the inner area has to reach Resized: where the framework tells of it only
  /// later, as some do of what is hidden, this calls Resized itself.
  virtual void MoveTo(const Rect& bounds) = 0;
  /// The size of the inner area, without frame and borders.
  [[nodiscard]] virtual Size ClientSize() const = 0;
  [[nodiscard]] virtual bool Shown() const = 0;
  /// Scales the font, where there is one, after the control itself and everything in it has been scaled. A control that
  /// took its container's font has to keep the scaled one as its own.
  virtual void ScaleFont(std::int32_t multiplier, std::int32_t divisor);
  /// The inner area has another size, and the children have been laid out.
  virtual void OnResized() {}

  /// Remembers the place as the one that anchors count from; called at the end of an adapter's constructor.
  void KeepDesign();
  /// To be called when the inner area has another size.
  void Resized();
  /// To be called when the control was shown or hidden.
  void ArrangeNeighbours();

  [[nodiscard]] LayoutNode* Container() const noexcept { return container_; }
  [[nodiscard]] const std::vector<LayoutNode*>& Nodes() const noexcept { return children_; }
  /// The children as controls.
  [[nodiscard]] std::vector<Control*> ChildControls() const;

 private:
  /// The place that anchors count from and the inner size of the container that it was in.
  struct Design {
    Rect bounds;
    Size container;
  };

  [[nodiscard]] bool IsChild(const LayoutNode* node) const noexcept;
  void Arrange();
  void ArrangeOnce();
  void ArrangeEdge(Alignment edge, Rect& free);
  void FollowAnchors(Size container);
  void MoveIfElsewhere(const Rect& bounds);
  struct Scaling;
  [[nodiscard]] std::vector<Scaling> PlanScaling(std::int32_t multiplier, std::int32_t divisor) const;
  void ScaleChildren(const std::vector<Scaling>& plan, std::int32_t multiplier, std::int32_t divisor);

  LayoutNode* container_;
  std::vector<LayoutNode*> children_;
  Alignment alignment_ = Alignment::None;
  Anchors anchors_;
  std::optional<Design> design_;
  bool arranging_ = false;
  bool again_ = false;
  std::int32_t resizing_ = 0;
};

/// Makes one of the control interfaces of a LayoutNode: `class Edit : public LaidOut<Control>` has only the members
/// left to write that ask or tell the framework.
template <class Interface>
class LaidOut : public Interface, public LayoutNode {
 public:
  LaidOut(LayoutNode* container, Text name) : LayoutNode(container), name_(std::move(name)) {}

  [[nodiscard]] Text Name() const override { return name_; }
  [[nodiscard]] Rect Bounds() const override { return Place(); }
  void SetBounds(const Rect& bounds) override { PutAt(bounds); }
  [[nodiscard]] Alignment Aligned() const override { return GetAlignment(); }
  [[nodiscard]] Anchors Anchored() const override { return GetAnchors(); }
  [[nodiscard]] bool Visible() const override { return Shown(); }
  [[nodiscard]] bool IsContainer() const override { return false; }
  void ScaleBy(std::int32_t multiplier, std::int32_t divisor) override { Scale(multiplier, divisor); }

 protected:
  [[nodiscard]] Control& AsControl() override { return *this; }

 private:
  Text name_;
};

/// A container whose children are LayoutNodes.
template <class Interface>
class LaidOutContainer : public LaidOut<Interface> {
 public:
  using LaidOut<Interface>::LaidOut;
  [[nodiscard]] bool IsContainer() const override { return true; }
};

/// A panel whose children are LayoutNodes and whose resize handler is kept here.
class KIV_API LaidOutPanel : public LaidOutContainer<Panel> {
 public:
  using LaidOutContainer<Panel>::LaidOutContainer;

  [[nodiscard]] std::vector<Control*> Children() const override { return ChildControls(); }
  [[nodiscard]] std::int32_t ClientWidth() const override { return ClientSize().width; }
  [[nodiscard]] bool HasResizeHandler() const override { return static_cast<bool>(handler_); }
  void SetResizeHandler(ResizeHandler handler) override { handler_ = std::move(handler); }

 protected:
  void OnResized() override;

 private:
  ResizeHandler handler_;
};

}  // namespace kiv::host
