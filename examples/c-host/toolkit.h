/* A toolkit in plain C, as small as one can be, and the table that lends it to the library. Another toolkit is lent in
   the same way: its own controls, behind the same functions. */
#ifndef TOOLKIT_H
#define TOOLKIT_H

#include <kivtools/kiv.h>

enum { TOOL_MOST_CHILDREN = 8 };

typedef struct Tool {
  int32_t kind;
  const char* name;
  const char* className;
  KivRect bounds;
  int32_t alignment;
  int32_t anchors;
  int32_t hidden;
  int32_t maximised; /* of a form */
  struct Tool* parent;
  struct Tool* children[TOOL_MOST_CHILDREN];
  size_t childCount;
  KivResizeHandler onResize; /* of a panel */
  void* onResizeData;
  KivStatus resized; /* what the handler said last */
} Tool;

/* A control of that kind in that parent, null for none. */
Tool ToolMake(int32_t kind, const char* name, const char* className);
void ToolAdd(Tool* parent, Tool* child);

/* Moves a control. One that has another size lays out its children and tells its handler. */
void ToolMove(Tool* tool, int32_t left, int32_t top, int32_t width, int32_t height);

/* The address by which the library knows it. */
KivControl* ToolControl(Tool* tool);

/* The monitor that the toolkit knows, and where its mouse is. */
typedef struct ToolScreen {
  KivMonitor monitor;
  KivPoint mouse;
} ToolScreen;

/* What KivHostInstall takes; the screen must live as long as the host does. */
KivHostTable ToolkitTable(ToolScreen* screen);

#endif
