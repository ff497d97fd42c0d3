/**
 * @file
 * Forms, elastic panels and sizes for large fonts, over the controls of the host that KivHostInstall has installed. See
 * kivtools/WinUtil/Forms.h, kivtools/UPanelElastic.h and kivtools/LargeFontScaler.h for the rules. For the
 * application's main thread.
 */
#ifndef KIVTOOLS_C_FORMS_H
#define KIVTOOLS_C_FORMS_H

#include "kivtools/c/Host.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Puts a form in the middle of the monitor under the mouse; allowEnlarging not 0 lets one that does not fit a small
 * monitor fill it. Example: 0, and the form of 300 x 200 lies at (810, 420) of 1920 x 1040. */
KIV_API KivStatus KivCentreazaForm(KivControl* form, int32_t allowEnlarging);

/** Lets a form fill a small monitor; it is maximised once it is shown. On a large one it is only centred. Example: 0.
 */
KIV_API KivStatus KivCentreazaSiRedimensioneazaForm(KivControl* form);

/** A size by the ratio of "LargeFonts.txt" and the screen's pixels per inch. Example: with "5:4" 100 gives 125. */
KIV_API KivStatus KivIntegerScale(int32_t value, int32_t* result);

/** Scales a control by that ratio. Example: 0. */
KIV_API KivStatus KivScaleControl(KivControl* control);

/** Divides the width of a panel among the panels in it. Made by KivPanelElasticCreate. */
typedef struct KivPanelElastic KivPanelElastic;

/** One section of it; the fields are those of kiv::TInfoPanelSectiune. */
typedef struct KivPanelSection {
  KivControl* panel;
  int32_t latimeInitiala;
  int32_t latimeMinima;
  int32_t aliniere; /**< KIV_ALIGN_... */
  int32_t elastic;  /**< 1 or 0 */
} KivPanelSection;

/** Makes a manager without sections. Example: 0. */
KIV_API KivStatus KivPanelElasticCreate(KivPanelElastic** manager);

/** Frees a manager; null is ignored. A resize handler that it has installed does nothing from now on. Example: 0. */
KIV_API KivStatus KivPanelElasticDestroy(KivPanelElastic* manager);

/** Reads the sections of a support panel and installs a resize handler where the panel has none. Fails with
 * KIV_ERROR_CAST for a control that is no panel and with KIV_ERROR_GENERAL for one that holds anything but panels
 * aligned left, right or client. Example: 0. */
KIV_API KivStatus KivPanelElasticInitializeaza(KivPanelElastic* manager, KivControl* support);

/** Divides the width now. Fails with KIV_ERROR_DIVISION where the design widths sum to 0. Example: 0. */
KIV_API KivStatus KivPanelElasticRedimensioneaza(KivPanelElastic* manager);

/** How many sections there are. Example: 3. */
KIV_API KivLength KivPanelElasticCount(const KivPanelElastic* manager);

/** A section by its index from 0. Fails with KIV_ERROR_LIST_INDEX for one that is not there. Example: 0. */
KIV_API KivStatus KivPanelElasticSectiune(const KivPanelElastic* manager, int32_t index, KivPanelSection* section);

#ifdef __cplusplus
}
#endif

#endif
