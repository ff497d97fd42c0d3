#include "toolkit.h"

#include <string.h>

Tool ToolMake(int32_t kind, const char* name, const char* className) {
  Tool tool;
  memset(&tool, 0, sizeof tool);
  tool.kind = kind;
  tool.name = name;
  tool.className = className;
  tool.anchors = KIV_ANCHOR_LEFT + KIV_ANCHOR_TOP;
  return tool;
}

void ToolAdd(Tool* parent, Tool* child) {
  parent->children[parent->childCount++] = child;
  child->parent = parent;
}

/* Sections aligned left, one beside the other. */
static void LayOut(Tool* tool) {
  int32_t left = 0;
  for (size_t i = 0; i < tool->childCount; ++i) {
    Tool* child = tool->children[i];
    if (child->alignment == KIV_ALIGN_LEFT && !child->hidden) {
      const int32_t width = child->bounds.right - child->bounds.left;
      child->bounds.left = left;
      child->bounds.right = left += width;
    }
  }
}

void ToolMove(Tool* tool, int32_t left, int32_t top, int32_t width, int32_t height) {
  const KivRect before = tool->bounds;
  const KivRect now = {left, top, left + width, top + height};
  tool->bounds = now;
  if (tool->parent != NULL) {
    LayOut(tool->parent);
  }
  if (width != before.right - before.left || height != before.bottom - before.top) {
    LayOut(tool);
    if (tool->onResize != NULL) {
      tool->resized = tool->onResize(tool->onResizeData);
    }
  }
}

KivControl* ToolControl(Tool* tool) {
  return (KivControl*)tool;
}

static Tool* Of(KivControl* control) {
  return (Tool*)control;
}

/* As much of the text as fits, always with a zero at its end; the whole length is the result. */
static KivLength Give(const char* text, char* buffer, size_t capacity) {
  const size_t length = strlen(text);
  if (capacity > 0) {
    const size_t copied = length < capacity ? length : capacity - 1;
    memcpy(buffer, text, copied);
    buffer[copied] = '\0';
  }
  return (KivLength)length;
}

static int32_t Kind(void* context, KivControl* control) {
  (void)context;
  return Of(control)->kind;
}

static KivLength Name(void* context, KivControl* control, char* buffer, size_t capacity) {
  (void)context;
  return Give(Of(control)->name, buffer, capacity);
}

static KivLength ClassName(void* context, KivControl* control, char* buffer, size_t capacity) {
  (void)context;
  return Give(Of(control)->className, buffer, capacity);
}

static void Bounds(void* context, KivControl* control, KivRect* bounds) {
  (void)context;
  *bounds = Of(control)->bounds;
}

static void SetBounds(void* context, KivControl* control, const KivRect* bounds) {
  (void)context;
  ToolMove(Of(control), bounds->left, bounds->top, bounds->right - bounds->left, bounds->bottom - bounds->top);
}

static int32_t Alignment(void* context, KivControl* control) {
  (void)context;
  return Of(control)->alignment;
}

static int32_t Anchors(void* context, KivControl* control) {
  (void)context;
  return Of(control)->anchors;
}

static int32_t Visible(void* context, KivControl* control) {
  (void)context;
  return !Of(control)->hidden;
}

static void ScaleBy(void* context, KivControl* control, int32_t multiplier, int32_t divisor) {
  (void)context;
  Tool* tool = Of(control);
  for (size_t i = 0; i < tool->childCount; ++i) {
    ScaleBy(context, ToolControl(tool->children[i]), multiplier, divisor);
  }
  ToolMove(tool, tool->bounds.left * multiplier / divisor, tool->bounds.top * multiplier / divisor,
           (tool->bounds.right - tool->bounds.left) * multiplier / divisor,
           (tool->bounds.bottom - tool->bounds.top) * multiplier / divisor);
}

static size_t Children(void* context, KivControl* panel, KivControl** controls, size_t capacity) {
  (void)context;
  const Tool* tool = Of(panel);
  for (size_t i = 0; i < tool->childCount && i < capacity; ++i) {
    controls[i] = ToolControl(tool->children[i]);
  }
  return tool->childCount;
}

static int32_t ClientWidth(void* context, KivControl* panel) {
  (void)context;
  return Of(panel)->bounds.right - Of(panel)->bounds.left;
}

static int32_t ResizeHandler(void* context, KivControl* panel) {
  (void)context;
  return Of(panel)->onResize != NULL ? KIV_RESIZE_TAKEN : KIV_RESIZE_FREE;
}

static void SetResizeHandler(void* context, KivControl* panel, KivResizeHandler handler, void* data) {
  (void)context;
  Of(panel)->onResize = handler;
  Of(panel)->onResizeData = data;
}

/* Here a form is its own window. It must not go while a thread of the library may ask. */
static void* Window(void* context, KivControl* form) {
  (void)context;
  return form;
}

static int32_t WindowVisible(void* context, void* window) {
  (void)context;
  return !((Tool*)window)->hidden;
}

static void MaximiseWindow(void* context, void* window) {
  (void)context;
  ((Tool*)window)->maximised = 1;
}

static size_t Monitors(void* context, KivMonitor* monitors, size_t capacity) {
  if (capacity > 0) {
    monitors[0] = ((ToolScreen*)context)->monitor;
  }
  return 1;
}

static void MousePosition(void* context, KivPoint* position) {
  *position = ((ToolScreen*)context)->mouse;
}

KivHostTable ToolkitTable(ToolScreen* screen) {
  /* What is not named stays null: the built-in host serves. */
  KivHostTable table = {.size = sizeof table,
                        .context = screen,
                        .kind = Kind,
                        .name = Name,
                        .className = ClassName,
                        .bounds = Bounds,
                        .setBounds = SetBounds,
                        .alignment = Alignment,
                        .anchors = Anchors,
                        .visible = Visible,
                        .scaleBy = ScaleBy,
                        .children = Children,
                        .clientWidth = ClientWidth,
                        .resizeHandler = ResizeHandler,
                        .setResizeHandler = SetResizeHandler,
                        .window = Window,
                        .windowVisible = WindowVisible,
                        .maximiseWindow = MaximiseWindow,
                        .monitors = Monitors,
                        .mousePosition = MousePosition};
  return table;
}
