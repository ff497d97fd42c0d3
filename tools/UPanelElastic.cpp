#include "kivtools/UPanelElastic.h"

#include <algorithm>

#include "core/Wrapping.h"

namespace kiv {
namespace {

/// What a section is wide beyond its outermost anchored child.
constexpr std::int32_t kMargin = 4;

// Window coordinates end at 32767, so a design width times a free width stays below 2^30 and wrapping is never seen on
// a screen; a control tree in memory may be wider, and there the rule's 32-bit arithmetic must still be defined.
std::int32_t WrappedSum(std::int32_t one, std::int32_t other) {
  return Wrapped(std::int64_t{one} + other);
}

Text Named(const host::Control& control) {
  return control.Name() + ":" + Text(control.ClassName());
}

host::Panel& SectionPanel(const host::Panel& support, host::Control& child) {
  auto* const panel = dynamic_cast<host::Panel*>(&child);
  if (panel == nullptr) {
    throw Error("Panoul de suport - " + Named(support) +
                " trebuie sa contina exclusiv controale de tip TCustomPanel; Controlul " + Named(child) +
                " *NU* are ce cauta acolo!");
  }
  const host::Alignment alignment = panel->Aligned();
  if (alignment != host::Alignment::Left && alignment != host::Alignment::Right &&
      alignment != host::Alignment::Client) {
    throw Error(
        "Toate panourile de sectiune trebuie sa fie aliniate left/client/right; Nu se accepta alte alinieri! Verifica "
        "alinierea pentru " +
        Named(*panel) + " *NU* are ce cauta acolo!");
  }
  return *panel;
}

void ReadChildren(TInfoPanelSectiune& section) {
  for (const host::Control* const child : section.Panel->Children()) {
    const host::Anchors anchors = child->Anchored();
    if (anchors.left && anchors.right) {
      section.Elastic = true;
    } else if (anchors.left || anchors.right) {
      const std::int32_t need = anchors.left
                                    ? WrappedSum(WrappedSum(child->Left(), child->Width()), kMargin)
                                    : Wrapped(std::int64_t{section.Panel->ClientWidth()} + kMargin - child->Left());
      section.LatimeMinima = std::max(section.LatimeMinima, need);
    }
  }
}

std::int32_t Share(std::int32_t designWidth, std::int32_t free, std::int32_t weight) {
  if (weight == 0) {
    throw DivisionByZero("Redimensioneaza: latimile initiale ale sectiunilor elastice au suma zero");
  }
  return Wrapped(std::int64_t{Wrapped(std::int64_t{designWidth} * free)} / weight);
}

}  // namespace

std::int32_t TListaInfoPanelSectiune::Add(std::unique_ptr<TInfoPanelSectiune> section) {
  if (section == nullptr) {
    throw InvalidCast("Lista de sectiuni: sectiunea lipseste");
  }
  sections_.push_back(std::move(section));
  return Count() - 1;
}

TInfoPanelSectiune& TListaInfoPanelSectiune::GetSectiune(std::int32_t index) const {
  if (index < 0 || index >= Count()) {
    throw ListIndexError("Lista de sectiuni: indexul " + std::to_string(index) + " nu exista; sunt " +
                         std::to_string(Count()) + " sectiuni");
  }
  return *sections_[static_cast<std::size_t>(index)];
}

TManagerPanelElastic::TManagerPanelElastic() : self_(std::make_shared<TManagerPanelElastic*>(this)) {}
TManagerPanelElastic::~TManagerPanelElastic() = default;

void TManagerPanelElastic::Initializeaza(host::Panel& support) {
  support_ = &support;
  for (host::Control* const child : support.Children()) {
    auto section = std::make_unique<TInfoPanelSectiune>();
    section->Panel = &SectionPanel(support, *child);
    section->LatimeInitiala = section->Panel->Width();
    section->Aliniere = section->Panel->Aligned();
    ReadChildren(*section);
    sections_.Add(std::move(section));
  }
  if (support.OffersResizeHandler() && !support.HasResizeHandler()) {
    support.SetResizeHandler([manager = std::weak_ptr(self_)](host::Object* sender) {
      if (const auto alive = manager.lock()) {
        (*alive)->OnResizeSuport(sender);
      }
    });
  }
}

void TManagerPanelElastic::Redimensioneaza() {
  if (support_ == nullptr) {
    return;
  }
  std::int32_t fixed = 0;
  std::int32_t weight = 0;
  std::vector<const TInfoPanelSectiune*> elastic;
  for (std::int32_t i = 0; i < Count(); ++i) {
    const TInfoPanelSectiune& section = Sectiune(i);
    if (!section.Panel->Visible()) {
      continue;
    }
    fixed = WrappedSum(fixed, section.Elastic ? section.LatimeMinima : section.LatimeInitiala);
    if (section.Elastic) {
      weight = WrappedSum(weight, section.LatimeInitiala);
      elastic.push_back(&section);
    }
  }
  const std::int32_t free = Wrapped(std::int64_t{support_->ClientWidth()} - fixed);
  if (free <= 0) {
    return;
  }
  for (const TInfoPanelSectiune* const section : elastic) {
    section->Panel->SetWidth(WrappedSum(section->LatimeMinima, Share(section->LatimeInitiala, free, weight)));
  }
}

void TManagerPanelElastic::OnResizeSuport(host::Object* /*sender*/) {
  Redimensioneaza();
}

}  // namespace kiv
