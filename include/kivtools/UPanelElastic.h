/// @file
/// Elastic panels: sections side by side in a support panel share its width, whatever size the form gets.
///
/// Meant for the application's main thread.
#pragma once

#include <memory>
#include <vector>

#include "kivtools/Host/Controls.h"
#include "kivtools/Types.h"

namespace kiv {

/// One section of a support panel.
class KIV_API TInfoPanelSectiune {
 public:
  /// The section panel; not owned.
  host::Panel* Panel = nullptr;
  /// Its width in pixels when the manager was initialised.
  std::int32_t LatimeInitiala = 0;
  /// The least width in pixels that keeps its anchored children visible.
  std::int32_t LatimeMinima = 0;
  /// Its alignment when the manager was initialised: left, right or client.
  host::Alignment Aliniere = host::Alignment::None;
  /// True where it holds a child that is anchored both left and right: such a section shares the spare width.
  bool Elastic = false;
};

/// The sections in the order of the support's children; owns its items.
class KIV_API TListaInfoPanelSectiune {
 public:
  /// Appends a section and returns its index. Throws InvalidCast for null.
  std::int32_t Add(std::unique_ptr<TInfoPanelSectiune> section);
  /// Section i, from 0; throws ListIndexError for one that is not there.
  [[nodiscard]] TInfoPanelSectiune& GetSectiune(std::int32_t index) const;
  [[nodiscard]] std::int32_t Count() const noexcept { return static_cast<std::int32_t>(sections_.size()); }

 private:
  std::vector<std::unique_ptr<TInfoPanelSectiune>> sections_;
};

/// Divides the width of a support panel among the section panels in it. Sections that hold a child anchored both left
/// and right are elastic: each gets its least width and a share of what is free, in proportion to its design width.
/// The others keep their width, hidden ones take none.
///
///     TManagerPanelElastic manager;      // a support of 600: A fixed 100, B elastic 200, C elastic 100
///     manager.Initializeaza(support);    // B needs at least 50, C at least 30
///     manager.Redimensioneaza();         // B gets 50 + 280, C gets 30 + 140
///
/// The panels must live as long as somebody resizes. The manager may go first: the handler that it has installed stays
/// and does nothing.
class KIV_API TManagerPanelElastic {
 public:
  TManagerPanelElastic();
  ~TManagerPanelElastic();
  TManagerPanelElastic(const TManagerPanelElastic&) = delete;
  TManagerPanelElastic& operator=(const TManagerPanelElastic&) = delete;

  /// Reads the sections and installs OnResizeSuport as the support's resize handler, where the support offers that and
  /// has none yet; with another handler the host calls Redimensioneaza itself. Nothing is resized yet. A second call
  /// appends its sections to those of the first.
  ///
  /// Throws Error where the support holds anything but panels aligned left, right or client; the sections read before
  /// stay in the list, and no handler is installed.
  void Initializeaza(host::Panel& support);

  /// Divides the width; changes nothing before Initializeaza, or where the support is too narrow for the fixed sections
  /// and the least widths of the elastic ones. Shares are cut to whole pixels and the rest is left free. Products wrap
  /// at 32 bits, which no window is wide enough to reach. Throws DivisionByZero where the design widths of the visible
  /// elastic sections sum to 0.
  void Redimensioneaza();

  /// The resize handler: calls Redimensioneaza.
  void OnResizeSuport(host::Object* sender);

  /// The number of sections.
  [[nodiscard]] std::int32_t Count() const noexcept { return sections_.Count(); }
  /// Section i, from 0; throws ListIndexError for one that is not there.
  [[nodiscard]] TInfoPanelSectiune& Sectiune(std::int32_t index) const { return sections_.GetSectiune(index); }

 private:
  TListaInfoPanelSectiune sections_;
  host::Panel* support_ = nullptr;
  /// Points to this object for as long as it lives, for the handler.
  std::shared_ptr<TManagerPanelElastic*> self_;
};

}  // namespace kiv
