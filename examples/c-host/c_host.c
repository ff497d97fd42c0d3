/* An application in plain C that lends its own forms: centres one and divides a panel of it. */
#include <stdio.h>

#include "toolkit.h"

static void Show(const Tool* tool) {
  printf("%s: %d x %d at (%d, %d)\n", tool->name, (int)(tool->bounds.right - tool->bounds.left),
         (int)(tool->bounds.bottom - tool->bounds.top), (int)tool->bounds.left, (int)tool->bounds.top);
}

static int Failed(void) {
  char message[200];
  KivLastErrorMessage(message, sizeof message);
  fprintf(stderr, "%s\n", message);
  return 1;
}

int main(void) {
  ToolScreen screen = {{{-1280, 0, 0, 1024}, {-1280, 0, 0, 994}}, {-10, 500}};
  const KivHostTable table = ToolkitTable(&screen);
  if (KivHostInstall(&table) < 0) {
    return Failed();
  }

  Tool form = ToolMake(KIV_CONTROL_FORM, "frmFactura", "TFormFactura");
  Tool support = ToolMake(KIV_CONTROL_PANEL, "pnlSus", "TPanel");
  Tool sections[3];
  Tool edits[2];
  static const char* const kNames[] = {"pnlButoane", "pnlClient", "pnlNumar"};
  static const int32_t kWidths[] = {100, 200, 100};
  ToolMove(&form, 0, 0, 600, 400);
  ToolMove(&support, 0, 0, 600, 40);
  ToolAdd(&form, &support);
  for (int i = 0; i < 3; ++i) {
    sections[i] = ToolMake(KIV_CONTROL_PANEL, kNames[i], "TPanel");
    sections[i].alignment = KIV_ALIGN_LEFT;
    ToolMove(&sections[i], 0, 0, kWidths[i], 40);
    ToolAdd(&support, &sections[i]);
  }
  for (int i = 0; i < 2; ++i) { /* what is anchored to both sides makes a section elastic */
    edits[i] = ToolMake(KIV_CONTROL_OTHER, "edt", "TEdit");
    edits[i].anchors = KIV_ANCHOR_LEFT + KIV_ANCHOR_TOP + KIV_ANCHOR_RIGHT;
    ToolAdd(&sections[i + 1], &edits[i]);
  }

  if (KivCentreazaForm(ToolControl(&form), 0) < 0) {
    return Failed();
  }
  Show(&form);

  KivPanelElastic* elastic = NULL;
  if (KivPanelElasticCreate(&elastic) < 0 || KivPanelElasticInitializeaza(elastic, ToolControl(&support)) < 0) {
    return Failed();
  }
  ToolMove(&support, 0, 0, 1000, 40); /* the library's handler divides it */
  for (int i = 0; i < 3; ++i) {
    Show(&sections[i]);
  }
  KivPanelElasticDestroy(elastic);
  KivHostRemove();
  return 0;
}
