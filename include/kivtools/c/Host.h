/**
 * @file
 * An application in C, or in any language that has C's calls, lends the library its own forms and services: it fills a
 * table of functions and installs it. See kivtools/Host.h for what each is for.
 *
 * A function that is null is one that the application has not got: of the services (application, screen, dialogs,
 * clipboard, colours) those of the built-in host then serve; an operation that needs a missing function of the controls
 * fails with KIV_ERROR_GENERAL and names it. No function may leave by anything but a return. All are called on the
 * application's main thread, except where it is said otherwise.
 */
#ifndef KIVTOOLS_C_HOST_H
#define KIVTOOLS_C_HOST_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** One of the application's controls: any address that it wants to know the control by, never null. The library only
 * hands it back. */
typedef struct KivControl KivControl;

/** A rectangle in pixels; right and bottom are the first outside. Example: {10, 20, 110, 70} is 100 x 50. */
typedef struct KivRect {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
} KivRect;

/** A place on the screen, in pixels; with several monitors both may be negative. */
typedef struct KivPoint {
  int32_t x;
  int32_t y;
} KivPoint;

/** A monitor and the part of it that task bars leave free. */
typedef struct KivMonitor {
  KivRect bounds;
  KivRect workArea;
} KivMonitor;

/** What a control is. */
enum {
  KIV_CONTROL_OTHER = 0,     /**< one that cannot contain others, as a button */
  KIV_CONTROL_CONTAINER = 1, /**< one that can, and is no panel */
  KIV_CONTROL_PANEL = 2,
  KIV_CONTROL_LABEL = 3,
  KIV_CONTROL_FORM = 4
};

/** How a control fills its container. */
enum {
  KIV_ALIGN_NONE = 0,
  KIV_ALIGN_TOP = 1,
  KIV_ALIGN_BOTTOM = 2,
  KIV_ALIGN_LEFT = 3,
  KIV_ALIGN_RIGHT = 4,
  KIV_ALIGN_CLIENT = 5,
  KIV_ALIGN_CUSTOM = 6
};

/** The edges to which a control keeps its distance, to be added up. */
enum { KIV_ANCHOR_LEFT = 1, KIV_ANCHOR_TOP = 2, KIV_ANCHOR_RIGHT = 4, KIV_ANCHOR_BOTTOM = 8 };

/** Whether a panel has a resize handler. */
enum {
  KIV_RESIZE_NOT_OFFERED = 0, /**< it keeps its handler to itself */
  KIV_RESIZE_FREE = 1,        /**< it has none yet */
  KIV_RESIZE_TAKEN = 2        /**< it has one */
};

/** Dialogs: what they are about, their buttons, and the button that was pressed. */
enum { KIV_DIALOG_INFORMATION = 0, KIV_DIALOG_WARNING = 1, KIV_DIALOG_ERROR = 2 };
enum { KIV_BUTTONS_OK = 0, KIV_BUTTONS_OK_CANCEL = 1, KIV_BUTTONS_YES_NO = 2, KIV_BUTTONS_RETRY_CANCEL = 3 };
enum { KIV_ANSWER_OK = 0, KIV_ANSWER_CANCEL = 1, KIV_ANSWER_YES = 2, KIV_ANSWER_NO = 3, KIV_ANSWER_RETRY = 4 };

/** To be called after each change of a panel's size, with the `data` that came with it. It may be called for as long as
 * the library is loaded, and fails as the functions of this interface do. */
typedef KivStatus (*KivResizeHandler)(void* data);

/** What the application lends. The first argument of each function is `context`. Text is Windows-1250. */
typedef struct KivHostTable {
  /** sizeof(KivHostTable), so that later tables may be longer. */
  size_t size;
  void* context;

  /* Controls. */

  /** KIV_CONTROL_... */
  int32_t (*kind)(void* context, KivControl* control);
  /** Writes the name as functions of this interface do: cut to the buffer, the whole length returned. */
  KivLength (*name)(void* context, KivControl* control, char* buffer, size_t capacity);
  /** The name of the control's class, in the same way. */
  KivLength (*className)(void* context, KivControl* control, char* buffer, size_t capacity);
  /** Where the control lies in its container's client area, a form on the screen. */
  void (*bounds)(void* context, KivControl* control, KivRect* bounds);
  void (*setBounds)(void* context, KivControl* control, const KivRect* bounds);
  /** KIV_ALIGN_... */
  int32_t (*alignment)(void* context, KivControl* control);
  /** The sum of KIV_ANCHOR_... */
  int32_t (*anchors)(void* context, KivControl* control);
  /** Not 0 where the control itself is not hidden. */
  int32_t (*visible)(void* context, KivControl* control);
  /** Scales a container, with everything in it. */
  void (*scaleBy)(void* context, KivControl* control, int32_t multiplier, int32_t divisor);

  /* Panels. */

  /** Stores the controls that lie directly in the panel, as many as fit; returns how many there are. */
  size_t (*children)(void* context, KivControl* panel, KivControl** controls, size_t capacity);
  int32_t (*clientWidth)(void* context, KivControl* panel);
  /** KIV_RESIZE_... */
  int32_t (*resizeHandler)(void* context, KivControl* panel);
  void (*setResizeHandler)(void* context, KivControl* panel, KivResizeHandler handler, void* data);

  /* Labels, which are as wide as their captions. */

  KivLength (*caption)(void* context, KivControl* label, char* buffer, size_t capacity);
  void (*setCaption)(void* context, KivControl* label, const char* text, size_t length);
  void (*repaint)(void* context, KivControl* label);

  /* Forms. A window may be asked about from another thread, for up to 30 seconds and after its form has gone. */

  /** The form's window, by whatever address the two functions below know it; null where there is none yet. */
  void* (*window)(void* context, KivControl* form);
  /** Not 0 where the window is there and visible. Called from any thread. */
  int32_t (*windowVisible)(void* context, void* window);
  /** Called from any thread. */
  void (*maximiseWindow)(void* context, void* window);

  /* The application. */

  /** Not 0 on the thread that serves the windows. Called from any thread. */
  int32_t (*onMainThread)(void* context);
  void (*processMessages)(void* context);
  /** The main form's window as the system knows it, 0 for none. */
  uintptr_t (*mainWindow)(void* context);

  /* The screen. */

  /** Stores the monitors, the main one first, as many as fit; returns how many there are. */
  size_t (*monitors)(void* context, KivMonitor* monitors, size_t capacity);
  void (*mousePosition)(void* context, KivPoint* position);
  int32_t (*pixelsPerInch)(void* context);
  int32_t (*messageFontHeight)(void* context);
  /** A capability of a device by the system's number for it. */
  int32_t (*deviceCapability)(void* context, uintptr_t device, int32_t capability);

  /* Dialogs, clipboard, colours. */

  /** Shows a message and waits: KIV_ANSWER_..., or negative where it cannot be shown. */
  int32_t (*ask)(void* context, int32_t kind, const char* text, size_t length, int32_t buttons);
  /** 0, or negative where the clipboard cannot be had. */
  KivStatus (*setClipboardText)(void* context, const char* text, size_t length);
  KivLength (*clipboardText)(void* context, char* buffer, size_t capacity);
  /** 0x00BBGGRR of the system colour with that number. */
  uint32_t (*systemColour)(void* context, uint32_t number);
} KivHostTable;

/** Makes the application the host. The table is copied; what its functions use must last until the host has been taken
 * back, and the window functions 30 seconds longer. Fails with KIV_ERROR_ARGUMENT for a size that no version has had.
 * Example: 0. */
KIV_API KivStatus KivHostInstall(const KivHostTable* table);

/** Brings the built-in host back. Example: 0, also where none was installed. */
KIV_API KivStatus KivHostRemove(void);

#ifdef __cplusplus
}
#endif

#endif
