#include "kivtools/c/Forms.h"

#include <vector>

#include "kivtools/LargeFontScaler.h"
#include "kivtools/UPanelElastic.h"
#include "kivtools/WinUtil/Forms.h"
#include "package/c/Abi.h"
#include "package/c/HostTable.h"

using namespace kiv::c;
namespace host = kiv::host;

/// The manager and the panels that it was given, which hold the sections. It goes before them.
struct KivPanelElastic {
  std::vector<std::unique_ptr<host::Panel>> supports;
  kiv::TManagerPanelElastic manager;
};

extern "C" {

KivStatus KivCentreazaForm(KivControl* form, int32_t allowEnlarging) {
  return Run([=] { kiv::CentreazaForm(*Lent<host::Form>(&KIV_REQUIRED(form), "form"), allowEnlarging != 0); });
}

KivStatus KivCentreazaSiRedimensioneazaForm(KivControl* form) {
  return Run([=] { kiv::CentreazaSiRedimensioneazaForm(*Lent<host::Form>(&KIV_REQUIRED(form), "form")); });
}

KivStatus KivIntegerScale(int32_t value, int32_t* result) {
  return Run([=] { KIV_REQUIRED(result) = kiv::IntegerScale(value); });
}

KivStatus KivScaleControl(KivControl* control) {
  return Run([=] { kiv::ScaleControl(*LentControl(&KIV_REQUIRED(control))); });
}

KivStatus KivPanelElasticCreate(KivPanelElastic** manager) {
  return Run([=] {
    KivPanelElastic*& result = KIV_REQUIRED(manager);
    result = new KivPanelElastic;
  });
}

KivStatus KivPanelElasticDestroy(KivPanelElastic* manager) {
  return Run([=] { delete manager; });
}

KivStatus KivPanelElasticInitializeaza(KivPanelElastic* manager, KivControl* support) {
  return Run([=] {
    KivPanelElastic& elastic = KIV_REQUIRED(manager);
    elastic.supports.push_back(Lent<host::Panel>(&KIV_REQUIRED(support), "support"));
    elastic.manager.Initializeaza(*elastic.supports.back());
  });
}

KivStatus KivPanelElasticRedimensioneaza(KivPanelElastic* manager) {
  return Run([=] { KIV_REQUIRED(manager).manager.Redimensioneaza(); });
}

KivLength KivPanelElasticCount(const KivPanelElastic* manager) {
  return GiveLength([=] { return KIV_REQUIRED(manager).manager.Count(); });
}

KivStatus KivPanelElasticSectiune(const KivPanelElastic* manager, int32_t index, KivPanelSection* section) {
  return Run([=] {
    KivPanelSection& result = KIV_REQUIRED(section);
    const kiv::TInfoPanelSectiune& found = KIV_REQUIRED(manager).manager.Sectiune(index);
    result = {AddressOf(*found.Panel), found.LatimeInitiala, found.LatimeMinima, static_cast<int32_t>(found.Aliniere),
              found.Elastic ? 1 : 0};
  });
}

}  // extern "C"
