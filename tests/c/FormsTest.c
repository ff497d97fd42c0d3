/* The application's own forms, lent through a table: those of the example, and tables that lack something. */
#include "../../examples/c-host/toolkit.h"
#include "Expect.h"

static ToolScreen screen = {{{0, 0, 1024, 768}, {0, 0, 1024, 738}}, {5, 5}};

static int Lies(const Tool* tool, int32_t left, int32_t top, int32_t width, int32_t height) {
  return tool->bounds.left == left && tool->bounds.top == top && tool->bounds.right - left == width &&
         tool->bounds.bottom - top == height;
}

static void Centring(void) {
  Tool form = ToolMake(KIV_CONTROL_FORM, "frm", "TForm");
  Tool panel = ToolMake(KIV_CONTROL_PANEL, "pnl", "TPanel");
  ToolMove(&form, 1, 2, 100, 50);
  EXPECT(KivCentreazaForm(ToolControl(&form), 1) == KIV_OK && Lies(&form, 462, 344, 100, 50));
  screen.monitor.bounds.right = 1920; /* a large one: the thread that maximises is another test's */
  EXPECT(KivCentreazaSiRedimensioneazaForm(ToolControl(&form)) == KIV_OK && Lies(&form, 462, 344, 100, 50));
  screen.monitor.bounds.right = 1024;
  EXPECT(KivCentreazaForm(ToolControl(&panel), 0) == -KIV_ERROR_CAST);
  EXPECT(LastMessageIs("form: pnl:TPanel este un control de alt tip"));
  EXPECT(KivCentreazaForm(NULL, 0) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivCentreazaForm: form: pointer nul"));
  EXPECT(KivCentreazaSiRedimensioneazaForm(NULL) == -KIV_ERROR_ARGUMENT);
  form.kind = 77;
  EXPECT(KivCentreazaForm(ToolControl(&form), 0) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Aplicatia da un tip de control necunoscut: 77"));
}

static void ElasticPanel(void) {
  Tool support = ToolMake(KIV_CONTROL_PANEL, "pnlSus", "TPanel");
  Tool fixed = ToolMake(KIV_CONTROL_PANEL, "pnlA", "TPanel");
  Tool section = ToolMake(KIV_CONTROL_PANEL, "pnlB", "TPanel");
  Tool edit = ToolMake(KIV_CONTROL_OTHER, "edt", "TEdit");
  Tool button = ToolMake(KIV_CONTROL_OTHER, "Button1", "TButton");
  KivPanelElastic* manager = NULL;
  KivPanelSection read;
  fixed.alignment = section.alignment = KIV_ALIGN_LEFT;
  edit.anchors = KIV_ANCHOR_LEFT + KIV_ANCHOR_RIGHT;
  button.anchors = KIV_ANCHOR_RIGHT;
  ToolMove(&support, 0, 0, 300, 30);
  ToolMove(&fixed, 0, 0, 100, 30);
  ToolMove(&section, 100, 0, 150, 30);
  ToolMove(&button, 130, 0, 20, 20);
  ToolAdd(&support, &fixed);
  ToolAdd(&support, &section);
  ToolAdd(&section, &edit);
  ToolAdd(&section, &button);

  EXPECT(KivPanelElasticCreate(NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivPanelElasticCreate(&manager) == KIV_OK);
  EXPECT(KivPanelElasticCount(manager) == 0);
  EXPECT(KivPanelElasticInitializeaza(NULL, ToolControl(&support)) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivPanelElasticInitializeaza(manager, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivPanelElasticInitializeaza(manager, ToolControl(&edit)) == -KIV_ERROR_CAST);
  EXPECT(KivPanelElasticInitializeaza(manager, ToolControl(&support)) == KIV_OK);
  EXPECT(KivPanelElasticCount(manager) == 2);
  EXPECT(KivPanelElasticSectiune(manager, 1, &read) == KIV_OK);
  EXPECT(read.panel == ToolControl(&section) && read.latimeInitiala == 150 && read.latimeMinima == 150 + 4 - 130 &&
         read.aliniere == KIV_ALIGN_LEFT && read.elastic == 1);
  EXPECT(KivPanelElasticSectiune(manager, 0, &read) == KIV_OK && read.elastic == 0 && read.panel != NULL);
  EXPECT(KivPanelElasticSectiune(manager, 2, &read) == -KIV_ERROR_LIST_INDEX);
  EXPECT(KivPanelElasticSectiune(manager, 0, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivPanelElasticRedimensioneaza(manager) == KIV_OK && Lies(&section, 100, 0, 24 + 176, 30));
  ToolMove(&support, 0, 0, 500, 30); /* through the handler that the library has installed */
  EXPECT(support.resized == KIV_OK && Lies(&section, 100, 0, 24 + 376, 30));
  section.hidden = 1;
  ToolMove(&support, 0, 0, 600, 30);
  EXPECT(Lies(&section, 100, 0, 400, 30));
  section.hidden = 0;

  ToolAdd(&support, &button);
  EXPECT(KivPanelElasticInitializeaza(manager, ToolControl(&support)) == -KIV_ERROR_GENERAL);
  EXPECT(
      LastMessageIs("Panoul de suport - pnlSus:TPanel trebuie sa contina exclusiv controale de tip TCustomPanel; "
                    "Controlul Button1:TButton *NU* are ce cauta acolo!"));
  EXPECT(KivPanelElasticDestroy(manager) == KIV_OK);
  ToolMove(&support, 0, 0, 700, 30); /* the handler is still there and does nothing */
  EXPECT(support.onResize != NULL && support.resized == KIV_OK && Lies(&section, 100, 0, 400, 30));

  EXPECT(KivPanelElasticCreate(&manager) == KIV_OK);
  support.onResize = NULL;
  support.childCount = 2;
  ToolMove(&section, 100, 0, 0, 30);
  EXPECT(KivPanelElasticInitializeaza(manager, ToolControl(&support)) == KIV_OK);
  ToolMove(&support, 0, 0, 800, 30);
  EXPECT(support.resized == -KIV_ERROR_DIVISION);
  EXPECT(KivPanelElasticDestroy(manager) == KIV_OK);
  EXPECT(KivPanelElasticDestroy(NULL) == KIV_OK);
}

/* Without a file that says otherwise the ratio beside this program is 1:1. */
static void LargeFonts(void) {
  Tool panel = ToolMake(KIV_CONTROL_PANEL, "pnl", "TPanel");
  Tool edit = ToolMake(KIV_CONTROL_OTHER, "edt", "TEdit");
  int32_t scaled = 0;
  ToolMove(&panel, 4, 8, 20, 12);
  ToolMove(&edit, 4, 8, 20, 12);
  EXPECT(KivIntegerScale(100, &scaled) == KIV_OK && scaled == 100);
  EXPECT(KivIntegerScale(100, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivScaleControl(ToolControl(&panel)) == KIV_OK && Lies(&panel, 4, 8, 20, 12));
  EXPECT(KivScaleControl(ToolControl(&edit)) == KIV_OK && Lies(&edit, 4, 8, 20, 12));
  EXPECT(KivScaleControl(NULL) == -KIV_ERROR_ARGUMENT);
}

static char clipboard[100];

static KivStatus SetClipboard(void* context, const char* text, size_t length) {
  (void)context;
  if (length >= sizeof clipboard) {
    return -1;
  }
  memcpy(clipboard, text, length);
  clipboard[length] = '\0';
  return KIV_OK;
}

static void Tables(void) {
  Tool form = ToolMake(KIV_CONTROL_FORM, "frm", "TForm");
  KivHostTable table = ToolkitTable(&screen);
  EXPECT(KivHostRemove() == KIV_OK);
  EXPECT(KivCentreazaForm(ToolControl(&form), 0) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Nu este instalata nici o gazda: KivHostInstall"));
  EXPECT(KivHostInstall(NULL) == -KIV_ERROR_ARGUMENT);
  table.size = sizeof table - 1;
  EXPECT(KivHostInstall(&table) == -KIV_ERROR_ARGUMENT);
  table.size = sizeof table;
  table.setBounds = NULL;
  table.setClipboardText = SetClipboard;
  EXPECT(KivHostInstall(&table) == KIV_OK);
  EXPECT(KivCentreazaForm(ToolControl(&form), 0) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Aplicatia nu ofera functia setBounds"));
  EXPECT(KivCopiazaTextInClipboard("factura", KIV_ZERO_ENDED) == KIV_OK && strcmp(clipboard, "factura") == 0);
  memset(buffer, 'x', 150);
  EXPECT(KivCopiazaTextInClipboard(buffer, 150) == -KIV_ERROR_GENERAL);
  EXPECT(KivHostRemove() == KIV_OK);
  EXPECT(KivHostRemove() == KIV_OK);
}

void FormsTest(void) {
  const KivHostTable table = ToolkitTable(&screen);
  EXPECT(KivHostInstall(&table) == KIV_OK);
  Centring();
  ElasticPanel();
  LargeFonts();
  Tables();
}
