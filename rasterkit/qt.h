#pragma once

/// The Qt side of the ports, and controls for forms of a host.
#include <rasterkit/qt/bitmap_image.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/controls/paint_box.h>
#include <rasterkit/qt/files/file_dialogs.h>
#include <rasterkit/qt/files/file_list.h>
#include <rasterkit/qt/forms/language.h>
#include <rasterkit/qt/forms/message_box.h>
#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/qt/forms/translate_texts.h>
#include <rasterkit/qt/forms/window_settings.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/qt/host/settings_store.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/look/style.h>
#include <rasterkit/qt/pdf/qt_pdf.h>
