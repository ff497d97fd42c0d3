#include <gtest/gtest.h>

#include "Expect.h"
#include "kivtools/Host/HeadlessControls.h"

namespace kiv::host {
namespace {

using headless::Control;
using headless::Form;
using headless::Label;
using headless::Panel;

Form& Resize(Form& form, std::int32_t width, std::int32_t height) {
  form.SetBounds(Rect::At(form.Left(), form.Top(), width, height));
  return form;
}

TEST(Layout, EdgesAreTakenInTheirOrderAndTheClientGetsTheRest) {
  Form form("f");
  Resize(form, 400, 300);
  const struct {
    const char* name;
    Alignment alignment;
    Rect put;
    Rect laidOut;
    Rect atHalf;  // the form 200 x 150
  } controls[] = {
      {"client", Alignment::Client, {1, 1, 5, 5}, {70, 30, 370, 275}, {70, 30, 170, 125}},
      {"left 2", Alignment::Left, {50, 0, 90, 7}, {30, 30, 70, 275}, {30, 30, 70, 125}},
      {"left 1", Alignment::Left, {-5, 0, 25, 7}, {0, 30, 30, 275}, {0, 30, 30, 125}},
      {"right", Alignment::Right, {0, 0, 30, 9}, {370, 30, 400, 275}, {170, 30, 200, 125}},
      {"bottom", Alignment::Bottom, {5, 5, 9, 30}, {0, 275, 400, 300}, {0, 125, 200, 150}},
      {"top 1", Alignment::Top, {0, 0, 3, 10}, {0, 0, 400, 10}, {0, 0, 200, 10}},
      {"top 2", Alignment::Top, {0, 10, 3, 30}, {0, 10, 400, 30}, {0, 10, 200, 30}},
      {"custom", Alignment::Custom, {9, 9, 19, 19}, {9, 9, 19, 19}, {9, 9, 19, 19}},
  };
  std::vector<std::unique_ptr<Panel>> panels;
  for (const auto& control : controls) {
    panels.push_back(std::make_unique<Panel>(&form, control.name));
    panels.back()->SetBounds(control.put);
    panels.back()->SetAlignment(control.alignment);
  }
  for (std::size_t i = 0; i < panels.size(); ++i) {
    EXPECT_EQ(panels[i]->Bounds(), controls[i].laidOut) << controls[i].name;
  }
  Resize(form, 200, 150);
  for (std::size_t i = 0; i < panels.size(); ++i) {
    EXPECT_EQ(panels[i]->Bounds(), controls[i].atHalf) << controls[i].name;
  }
  panels[2]->SetVisible(false);  // "left 1" takes no place any more
  EXPECT_EQ(panels[1]->Bounds(), (Rect{0, 30, 40, 125}));
  panels[1]->SetWidth(60);
  EXPECT_EQ(panels[0]->Bounds(), (Rect{60, 30, 170, 125}));
  panels[1].reset();
  Resize(form, 20, 10);  // nothing gets a negative size
  EXPECT_EQ(panels[0]->Width(), 0);
  EXPECT_EQ(panels[0]->Height(), 0);
}

TEST(Layout, AnchorsKeepTheirDistances) {
  const struct {
    Anchors anchors;  // left, top, right, bottom
    Rect grown;       // the panel 50 wider and 20 higher
    Rect shrunk;      // 90 narrower and 90 lower
  } cases[] = {
      {{true, true, false, false}, {10, 20, 40, 60}, {10, 20, 40, 60}},
      {{true, true, true, true}, {10, 20, 90, 80}, {10, 20, 10, 20}},
      {{false, false, true, true}, {60, 40, 90, 80}, {-80, -70, -50, -30}},
      {{false, true, false, false}, {35, 20, 65, 60}, {-35, 20, -5, 60}},
      {{true, false, true, false}, {10, 30, 90, 70}, {10, -25, 10, 15}},
  };
  for (const auto& [anchors, grown, shrunk] : cases) {
    Panel panel(nullptr, "p");
    panel.SetBounds(Rect::At(0, 0, 100, 100));
    Control control(&panel, "c");
    control.SetBounds({10, 20, 40, 60});
    control.SetAnchors(anchors);
    panel.SetBounds(Rect::At(0, 0, 150, 120));
    EXPECT_EQ(control.Bounds(), grown);
    panel.SetBounds(Rect::At(0, 0, 10, 10));
    EXPECT_EQ(control.Bounds(), shrunk);
    panel.SetBounds(Rect::At(0, 0, 150, 120));  // a size that was lost comes back
    EXPECT_EQ(control.Bounds(), grown);
    EXPECT_EQ(control.Anchored(), anchors);
  }
}

TEST(Layout, HandlersHearEachNewSizeOnceAndMayMoveOthers) {
  Form form("f");
  Resize(form, 300, 100);
  Panel left(&form, "l");
  Panel right(&form, "r");
  left.SetBounds(Rect::At(0, 0, 100, 0));
  right.SetBounds(Rect::At(200, 0, 100, 0));
  left.SetAlignment(Alignment::Left);
  right.SetAlignment(Alignment::Right);
  int rounds = 0;
  EXPECT_FALSE(left.HasResizeHandler());
  left.SetResizeHandler([&](Object* sender) {
    EXPECT_EQ(sender, &left);
    ++rounds;
    right.SetWidth(left.Height());  // while the form is being laid out
  });
  EXPECT_TRUE(left.HasResizeHandler());
  Resize(form, 300, 150);
  EXPECT_EQ(rounds, 1);
  EXPECT_EQ(right.Bounds(), (Rect{150, 0, 300, 150}));
  left.SetBounds(left.Bounds());
  form.SetBounds(Rect::At(-50, 7, 300, 150));  // moved only
  EXPECT_EQ(rounds, 1);
  // Two that never agree are left alone after a while.
  right.SetResizeHandler([&](Object*) { left.SetWidth(left.Width() + 1); });
  left.SetResizeHandler([&](Object*) { right.SetWidth(right.Width() + 1); });
  EXPECT_NO_THROW(left.SetWidth(5));
  left.SetResizeHandler({});
  right.SetResizeHandler({});
  EXPECT_FALSE(left.HasResizeHandler());
  // What a handler throws comes out of the resize, and the layout works again afterwards.
  left.SetResizeHandler([](Object*) { throw DivisionByZero("x"); });
  EXPECT_THROW(Resize(form, 300, 90), DivisionByZero);
  left.SetResizeHandler({});
  Resize(form, 400, 80);
  EXPECT_EQ(right.Bounds().right, 400);
  EXPECT_EQ(left.Height(), 80);
}

TEST(Layout, ControlsMayComeAndGoInHandlers) {
  Form form("f");
  Resize(form, 300, 100);
  auto first = std::make_unique<Panel>(&form, "1");
  auto second = std::make_unique<Panel>(&form, "2");
  for (Panel* const panel : {first.get(), second.get()}) {
    panel->SetBounds(Rect::At(0, 0, 50, 0));
    panel->SetAlignment(Alignment::Left);
  }
  first->SetResizeHandler([&second](Object*) { second.reset(); });
  Resize(form, 300, 200);
  EXPECT_EQ(second, nullptr);
  Panel orphan(nullptr, "o");
  {
    Form shortLived("s");
    Panel inside(&shortLived, "i");
    auto* const kept = new Panel(&shortLived, "k");
    first.reset(kept);
  }
  EXPECT_NO_THROW(first->SetBounds(Rect::At(1, 2, 3, 4)));  // its form has gone
}

TEST(Layout, ScalesWithEverythingInside) {
  Form form("f");
  form.SetBounds(Rect::At(100, 50, 400, 200));
  Panel panel(&form, "p");
  panel.SetBounds(Rect::At(10, 20, 101, 50));
  Control anchored(&panel, "a");
  anchored.SetBounds(Rect::At(1, 2, 95, 20));
  anchored.SetAnchors({true, true, true, false});
  Label label(&panel, "l");
  label.SetBounds(Rect::At(3, 30, 0, 0));
  label.SetCaption("Total");
  EXPECT_EQ(label.Bounds(), Rect::At(3, 30, 40, 16));
  EXPECT_TRUE(form.IsContainer());
  EXPECT_TRUE(panel.IsContainer());
  EXPECT_FALSE(label.IsContainer());
  EXPECT_FALSE(anchored.IsContainer());

  form.ScaleBy(5, 4);
  EXPECT_EQ(form.Bounds(), Rect::At(100, 50, 500, 250));
  EXPECT_EQ(panel.Bounds(), Rect::At(13, 25, 126, 63));  // 12.5, 126.25 and 62.5: halves go up
  EXPECT_EQ(anchored.Bounds(), Rect::At(1, 3, 119, 25));
  EXPECT_EQ(label.Bounds(), Rect::At(4, 38, 50, 20));
  panel.SetWidth(136);  // anchors count from the scaled places
  EXPECT_EQ(anchored.Bounds(), Rect::At(1, 3, 129, 25));

  panel.ScaleBy(1, 2);
  EXPECT_EQ(panel.Bounds(), Rect::At(7, 13, 68, 32));
  EXPECT_EQ(form.Bounds(), Rect::At(100, 50, 500, 250));
  ExpectError<DivisionByZero>([&] { panel.ScaleBy(1, 0); }, "ScaleBy: impartire la zero");
  EXPECT_EQ(panel.Bounds(), Rect::At(7, 13, 68, 32));
  Control far(nullptr, "far");
  far.SetBounds({-7, -5, 0x40000000, 1});
  panel.ScaleBy(-1, -1);
  EXPECT_EQ(panel.Bounds(), Rect::At(7, 13, 68, 32));
}

TEST(Layout, FontsAreScaledFromTheInsideOut) {
  static std::vector<Text> scaled;
  struct Lettered : Panel {
    using Panel::Panel;
    void ScaleFont(std::int32_t multiplier, std::int32_t divisor) override {
      scaled.push_back(Name() + " " + std::to_string(multiplier) + ":" + std::to_string(divisor));
    }
  };
  Lettered outer(nullptr, "outer");
  Lettered middle(&outer, "middle");
  Lettered inner(&middle, "inner");
  outer.ScaleBy(5, 4);
  EXPECT_EQ(scaled, (std::vector<Text>{"inner 5:4", "middle 5:4", "outer 5:4"}));
}

TEST(HeadlessForm, ItsWindowOutlivesIt) {
  std::shared_ptr<Window> window;
  {
    Form form("f");
    window = form.GetWindow();
    EXPECT_FALSE(form.Visible());
    EXPECT_FALSE(window->Visible());
    window->Maximise();
    EXPECT_FALSE(form.Maximised());  // as the system, which does not show what is hidden
    form.SetVisible(true);
    EXPECT_TRUE(window->Visible());
    window->Maximise();
    EXPECT_TRUE(form.Maximised());
  }
  EXPECT_FALSE(window->Visible());
  window->Maximise();
}

}  // namespace
}  // namespace kiv::host
