#include "kivtools/Host/LaidOut.h"

#include <algorithm>
#include <array>
#include <limits>

namespace kiv::host {
namespace {

/// Handlers that never agree must not keep the application for ever.
constexpr std::int32_t kRounds = 8;

/// value * multiplier / divisor with halves away from zero, limited to what a coordinate can be.
std::int32_t Scaled(std::int32_t value, std::int32_t multiplier, std::int32_t divisor) {
  const std::int64_t product = std::int64_t{value} * multiplier;
  const std::int64_t half = (product < 0) == (divisor < 0) ? std::int64_t{divisor} / 2 : -(std::int64_t{divisor} / 2);
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>((product + half) / divisor, Limits::min(), Limits::max()));
}

Rect ScaledRect(const Rect& rect, std::int32_t multiplier, std::int32_t divisor) {
  return Rect::At(Scaled(rect.left, multiplier, divisor), Scaled(rect.top, multiplier, divisor),
                  Scaled(rect.Width(), multiplier, divisor), Scaled(rect.Height(), multiplier, divisor));
}

/// Keeps a flag up while it lives, whatever leaves.
class Raised {
 public:
  explicit Raised(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
  ~Raised() { flag_ = before_; }
  Raised(const Raised&) = delete;
  Raised& operator=(const Raised&) = delete;

 private:
  bool& flag_;
  bool before_;
};

/// Where a control comes in the order of its edge.
std::int32_t OrderAt(Alignment edge, const Rect& bounds) {
  switch (edge) {
    case Alignment::Top:
      return bounds.top;
    case Alignment::Bottom:
      return -bounds.bottom;
    case Alignment::Left:
      return bounds.left;
    case Alignment::Right:
      return -bounds.right;
    default:
      return 0;
  }
}

/// Cuts from the free area what a control of that size takes at the edge.
Rect Cut(Alignment edge, std::int32_t width, std::int32_t height, Rect& free) {
  Rect taken = free;
  switch (edge) {
    case Alignment::Top:
      free.top = taken.bottom = free.top + height;
      break;
    case Alignment::Bottom:
      free.bottom = taken.top = free.bottom - height;
      break;
    case Alignment::Left:
      free.left = taken.right = free.left + width;
      break;
    case Alignment::Right:
      free.right = taken.left = free.right - width;
      break;
    default:
      break;
  }
  // Where the edges have met there is nothing left.
  taken.right = std::max(taken.left, taken.right);
  taken.bottom = std::max(taken.top, taken.bottom);
  return taken;
}

/// One direction of an anchored control whose container has grown by `growth`.
void Stretch(bool near, bool far, std::int32_t growth, std::int32_t& from, std::int32_t& to) {
  if (near && far) {
    to = std::max(from, to + growth);
    return;
  }
  const std::int32_t shift = near ? 0 : far ? growth : growth / 2;
  from += shift;
  to += shift;
}

}  // namespace

/// A child's place after scaling, worked out before anything moved: what moves lays out what is in it.
struct LayoutNode::Scaling {
  LayoutNode* node;
  Rect bounds;
  std::vector<Scaling> children;
};

LayoutNode::LayoutNode(LayoutNode* container) : container_(container) {
  if (container_ != nullptr) {
    container_->children_.push_back(this);
  }
}

LayoutNode::~LayoutNode() {
  if (container_ != nullptr) {
    std::erase(container_->children_, this);
  }
  for (LayoutNode* const child : children_) {
    child->container_ = nullptr;
  }
}

void LayoutNode::SetAlignment(Alignment alignment) {
  alignment_ = alignment;
  KeepDesign();
  ArrangeNeighbours();
}

void LayoutNode::SetAnchors(Anchors anchors) {
  anchors_ = anchors;
  KeepDesign();
}

void LayoutNode::PutAt(const Rect& bounds) {
  MoveTo(bounds);
  KeepDesign();
  ArrangeNeighbours();
}

void LayoutNode::Scale(std::int32_t multiplier, std::int32_t divisor) {
  if (divisor == 0) {
    throw DivisionByZero("ScaleBy: impartire la zero");
  }
  const std::vector<Scaling> plan = PlanScaling(multiplier, divisor);
  const Rect bounds = Place();
  if (container_ != nullptr) {
    PutAt(ScaledRect(bounds, multiplier, divisor));
  } else {
    const Size client = ClientSize();
    PutAt(Rect::At(bounds.left, bounds.top, bounds.Width() - client.width + Scaled(client.width, multiplier, divisor),
                   bounds.Height() - client.height + Scaled(client.height, multiplier, divisor)));
  }
  // From the inside out: where controls without a font of their own take their container's, each is scaled once.
  ScaleChildren(plan, multiplier, divisor);
  ScaleFont(multiplier, divisor);
}

void LayoutNode::ScaleFont(std::int32_t /*multiplier*/, std::int32_t /*divisor*/) {}

void LayoutNode::KeepDesign() {
  design_ = Design{Place(), container_ != nullptr ? container_->ClientSize() : Size{}};
}

void LayoutNode::Resized() {
  Arrange();
  if (resizing_ < kRounds) {
    ++resizing_;
    try {
      OnResized();
    } catch (...) {
      --resizing_;
      throw;
    }
    --resizing_;
  }
}

void LayoutNode::ArrangeNeighbours() {
  if (container_ != nullptr) {
    container_->Arrange();
  }
}

void LayoutNode::Arrange() {
  if (arranging_) {
    again_ = true;  // a handler of a child that is being moved has moved another
    return;
  }
  const Raised arranging(arranging_);
  for (std::int32_t round = 0; round < kRounds; ++round) {
    again_ = false;
    ArrangeOnce();
    if (!again_) {
      return;
    }
  }
}

std::vector<Control*> LayoutNode::ChildControls() const {
  std::vector<Control*> controls;
  controls.reserve(children_.size());
  for (LayoutNode* const child : children_) {
    controls.push_back(&child->AsControl());
  }
  return controls;
}

bool LayoutNode::IsChild(const LayoutNode* node) const noexcept {
  return std::find(children_.begin(), children_.end(), node) != children_.end();
}

void LayoutNode::ArrangeOnce() {
  const Size client = ClientSize();
  Rect free{0, 0, client.width, client.height};
  for (const Alignment edge :
       {Alignment::Top, Alignment::Bottom, Alignment::Left, Alignment::Right, Alignment::Client}) {
    ArrangeEdge(edge, free);
  }
  // Moving a control may run its handlers, which may add and remove controls: walk over a copy.
  for (LayoutNode* const child : std::vector(children_)) {
    if (IsChild(child) && child->alignment_ == Alignment::None) {
      child->FollowAnchors(client);
    }
  }
}

void LayoutNode::ArrangeEdge(Alignment edge, Rect& free) {
  std::vector<LayoutNode*> here;
  std::copy_if(children_.begin(), children_.end(), std::back_inserter(here),
               [edge](const LayoutNode* child) { return child->alignment_ == edge && child->Shown(); });
  std::stable_sort(here.begin(), here.end(), [edge](const LayoutNode* one, const LayoutNode* other) {
    return OrderAt(edge, one->Place()) < OrderAt(edge, other->Place());
  });
  for (LayoutNode* const child : here) {
    if (IsChild(child)) {
      const Rect bounds = child->Place();
      child->MoveIfElsewhere(Cut(edge, bounds.Width(), bounds.Height(), free));
    }
  }
}

void LayoutNode::FollowAnchors(Size container) {
  if (!design_) {
    return;
  }
  Rect bounds = design_->bounds;
  Stretch(anchors_.left, anchors_.right, container.width - design_->container.width, bounds.left, bounds.right);
  Stretch(anchors_.top, anchors_.bottom, container.height - design_->container.height, bounds.top, bounds.bottom);
  MoveIfElsewhere(bounds);
}

void LayoutNode::MoveIfElsewhere(const Rect& bounds) {
  if (Place() != bounds) {
    MoveTo(bounds);
  }
}

std::vector<LayoutNode::Scaling> LayoutNode::PlanScaling(std::int32_t multiplier, std::int32_t divisor) const {
  std::vector<Scaling> plan;
  plan.reserve(children_.size());
  for (LayoutNode* const child : children_) {
    plan.push_back({child, ScaledRect(child->Place(), multiplier, divisor), child->PlanScaling(multiplier, divisor)});
  }
  return plan;
}

void LayoutNode::ScaleChildren(const std::vector<Scaling>& plan, std::int32_t multiplier, std::int32_t divisor) {
  for (const Scaling& step : plan) {
    if (!IsChild(step.node)) {
      continue;
    }
    step.node->MoveTo(step.bounds);
    if (IsChild(step.node)) {
      step.node->ScaleChildren(step.children, multiplier, divisor);
    }
    if (IsChild(step.node)) {
      step.node->ScaleFont(multiplier, divisor);
      step.node->KeepDesign();
    }
  }
  Arrange();
}

void LaidOutPanel::OnResized() {
  if (handler_) {
    const ResizeHandler handler = handler_;  // it may set another
    handler(this);
  }
}

}  // namespace kiv::host
