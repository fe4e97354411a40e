#pragma once

/// The modal dialogs.
#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>
#include <rasterkit/dialogs/bitmapframe/crop_bitmap.h>
#include <rasterkit/dialogs/bitmapframe/picture_view.h>
#include <rasterkit/dialogs/crop/choose_crop.h>
#include <rasterkit/dialogs/editchangesize/change_bitmap_size.h>
#include <rasterkit/dialogs/editchangesize/edit_size.h>
#include <rasterkit/dialogs/editor/edit_picture.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_graphic.h>
#include <rasterkit/dialogs/execbitmap/adjust_bitmap.h>
#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/dialogs/savedlgbitmap/edit_graphics_paras.h>
#include <rasterkit/dialogs/savedlgbitmap/save_bitmap_dlg_ext.h>
#include <rasterkit/dialogs/savedlgbitmap/save_options.h>
#include <rasterkit/dialogs/savedlgext/form_save_dlg_ext.h>
#include <rasterkit/dialogs/savedlgext/save_file_ok.h>
#include <rasterkit/dialogs/saving/choose_saving.h>
#include <rasterkit/dialogs/size/choose_size.h>
#include <rasterkit/dialogs/values/choose_values.h>
