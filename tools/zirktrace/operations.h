#pragma once

#include <zirk/backend.h>

#include <cstdint>
#include <iosfwd>
#include <variant>
#include <vector>

/// @file The operations of a trace, one per row: the number in the file, the function and the
/// fields. The code for recording, reading, replaying and printing is generated from these rows.

namespace ZIRK::trace {

/// The number of a context, surface, font, compositor or content.
enum class Id : uint32_t { None = 0 };

// The kinds of parameters and results that a C++ type alone does not determine. Value is the type
// in the trace, Given the type of the argument or result. All other types are used as they are.

struct FileValue;
struct CreatedValue;
template <int N>
struct PointsValue;

/// A null-terminated string, or null.
struct Text {
  using Value = const char*;
  using Given = const char*;
};
/// A surface.
struct Source {
  using Value = Id;
  using Given = VuBitmapImpl*;
};
/// A surface, or null.
struct Mask {
  using Value = Id;
  using Given = VuBitmapImpl*;
};
/// A font of the library.
struct Font {
  using Value = Id;
  using Given = VuFontImpl*;
};
/// A path and the content of its file.
struct File {
  using Value = FileValue;
  using Given = const char*;
};
/// A content; the next parameter is its Size.
struct Data {
  using Value = Id;
  using Given = const void*;
};
/// The number of bytes in the preceding Data.
struct Size {
  using Value = uint32_t;
  using Given = unsigned;
};
/// A destination for pixels, which is not recorded.
struct Into {
  using Value = std::monostate;
  using Given = void*;
};
/// A destination for text, which is not recorded.
struct Stream {
  using Value = std::monostate;
  using Given = std::ostream&;
};
/// Layers; the next parameter is their number.
struct Layers {
  using Value = std::vector<LayerDescription>;
  using Given = const LayerDescription*;
};
/// A destination for layers, which is not recorded.
struct Filled {
  using Value = std::monostate;
  using Given = LayerDescription*;
};
/// N points, or null.
template <int N>
struct Points {
  using Value = PointsValue<N>;
  using Given = VuTVector2D<float>*;
};
/// A value that the operation stores.
template <class T>
struct Out {
  using Value = T;
  using Given = T&;
};
/// A new surface, to which the trace gives a new Id.
struct NewBitmap {
  using Value = CreatedValue;
  using Given = VuBitmapImpl*;
};
/// A new screen, to which the trace gives a new Id.
struct NewScreen {
  using Value = CreatedValue;
  using Given = VuScreenImpl*;
};

// The rows: number, name in the trace, function, result, const, number of parameters, parameters.
// The numbers are part of the format: give each new operation a new number.

#define ZIRK_TRACE_CONTEXT_OPERATIONS(X)                                                  \
  X(20, CreateScreen, CreateScreen, NewScreen, , 1, (bool))                               \
  X(21, CreateScreenAs, CreateScreen, NewScreen, , 1, (VuScreenDescription))              \
  X(22, CreateBitmap, CreateBitmap, NewBitmap, , 3, (int, int, VuPixelFormat))            \
  X(23, CreateBitmapFromFile, CreateBitmapFromFile, NewBitmap, , 1, (File))               \
  X(24, CreateFittedFromFile, CreateBitmapFromFile, NewBitmap, , 5,                       \
    (File, int, int, VuScaleMode, VuDisplayMode))                                         \
  X(25, CreateBitmapFromMemory, CreateBitmapFromMemory, NewBitmap, , 2, (Data, Size))     \
  X(26, CreateFittedFromMemory, CreateBitmapFromMemory, NewBitmap, , 5,                   \
    (Data, Size, int, int, VuScaleMode))                                                  \
  X(27, AvailableMemory, AvailableMemory, unsigned, const, 0, ())                         \
  X(28, TotalMemory, TotalMemory, unsigned, const, 0, ())                                 \
  X(29, BitmapSize, BitmapSize, unsigned, const, 3, (int, int, VuPixelFormat))            \
  X(30, BitmapSizeOfFile, BitmapSize, unsigned, const, 1, (File))                         \
  X(31, BitmapSizeOfFittedFile, BitmapSize, unsigned, const, 3, (File, int, int))         \
  X(32, BitmapSizeOfMemory, BitmapSize, unsigned, const, 2, (Data, Size))                 \
  X(33, BitmapSizeOfFittedMemory, BitmapSize, unsigned, const, 4, (Data, Size, int, int)) \
  X(34, PrintBitmapList, PrintBitmapList, void, , 2, (unsigned, Stream))                  \
  X(35, FlushContext, Flush, void, , 0, ())                                               \
  X(36, SetTerminateOnDestruct, SetTerminateOnDestruct, void, , 1, (bool))                \
  X(37, GetGraphicsType, GetGraphicsType, int, const, 0, ())                              \
  X(38, GetMaxTextureSize, GetMaxTextureSize, int, const, 0, ())

/// Operations that may change the pixels of their surface.
#define ZIRK_TRACE_DRAWING_OPERATIONS(X)                                                          \
  X(52, Clear, Clear, void, , 0, ())                                                              \
  X(53, ClearTo, Clear, void, , 1, (VuColor))                                                     \
  X(68, DrawPoint, DrawPoint, void, , 6,                                                          \
    (VuPoint, float, VuColor, VuTransform, Mask, VuTVector2D<float>))                             \
  X(69, DrawPointBy, DrawPoint, void, , 6,                                                        \
    (VuPoint, float, VuColor, VuTMatrix2D<float>, Mask, VuTVector2D<float>))                      \
  X(70, DrawLine, DrawLine, void, , 6, (VuPoint, VuPoint, VuColor, VuTransform, Mask, Points<2>)) \
  X(71, DrawLineBy, DrawLine, void, , 6,                                                          \
    (VuPoint, VuPoint, VuColor, VuTMatrix2D<float>, Mask, Points<2>))                             \
  X(72, DrawRect, DrawRect, void, , 5, (VuRect, VuColor, VuTransform, Mask, Points<4>))           \
  X(73, DrawRectBy, DrawRect, void, , 5, (VuRect, VuColor, VuTMatrix2D<float>, Mask, Points<4>))  \
  X(74, DrawObject, DrawObject, void, , 7,                                                        \
    (VuRect, Source, VuRect, VuTransform, VuColor, Mask, Points<4>))                              \
  X(75, DrawObjectBy, DrawObject, void, , 7,                                                      \
    (VuRect, Source, VuRect, VuTMatrix2D<float>, VuColor, Mask, Points<4>))                       \
  X(76, DrawObjectSubPixel, DrawObject, void, , 7,                                                \
    (VuTRect2D<float>, Source, VuTRect2D<float>, VuTMatrix2D<float>, VuColor, Mask, Points<4>))   \
  X(77, DrawText, DrawText, void, , 8,                                                            \
    (Font, Text, VuPoint, VuColor, VuTransform, Mask, Points<4>, VuRect))                         \
  X(78, DrawTextBy, DrawText, void, , 8,                                                          \
    (Font, Text, VuPoint, VuColor, VuTMatrix2D<float>, Mask, Points<4>, VuRect))                  \
  X(84, CopyPixels, CopyPixels, bool, , 3, (VuPoint, Source, VuRect))

#define ZIRK_TRACE_OTHER_SURFACE_OPERATIONS(X)                  \
  X(50, Reserved, Reserved, void, , 0, ())                      \
  X(51, SetName, SetName, void, , 1, (Text))                    \
  X(54, GetInfo, GetInfo, VuBitmapInfo, const, 0, ())           \
  X(55, GetSize, GetSize, uint32_t, const, 0, ())               \
  X(56, GetBounds, GetBounds, VuRect, const, 0, ())             \
  X(57, GetClippingRect, GetClippingRect, VuRect, const, 0, ()) \
  X(58, SetClippingRect, SetClippingRect, void, , 1, (VuRect))  \
  X(59, GetBlendingFunc, GetBlendingFunc, void, const, 2,       \
    (Out<VuBlendingFactor>, Out<VuBlendingFactor>))             \
  X(62, GetBlendEnabled, GetBlendEnabled, bool, const, 0, ())   \
  X(63, SetBlendEnabled, SetBlendEnabled, void, , 1, (bool))    \
  X(64, GetBlendColor, GetBlendColor, VuColor, const, 0, ())    \
  X(65, SetBlendColor, SetBlendColor, void, , 1, (VuColor))     \
  X(66, GetScaleMode, GetScaleMode, VuScaleMode, const, 0, ())  \
  X(67, SetScaleMode, SetScaleMode, void, , 1, (VuScaleMode))   \
  X(81, Finish, Finish, void, , 0, ())                          \
  X(82, Flush, Flush, void, , 0, ())                            \
  X(83, GetPixels, GetPixels, bool, , 2, (VuRect, Into))        \
  X(85, IsTextureBacked, IsTextureBacked, bool, const, 0, ())

#define ZIRK_TRACE_SURFACE_OPERATIONS(X) \
  ZIRK_TRACE_DRAWING_OPERATIONS(X) ZIRK_TRACE_OTHER_SURFACE_OPERATIONS(X)

/// Surface operations that need more code than recording alone.
#define ZIRK_TRACE_WATCHED_OPERATIONS(X)                                                   \
  X(60, SetBlendingFunc, SetBlendingFunc, void, , 2, (VuBlendingFactor, VuBlendingFactor)) \
  X(61, SetBlendingFuncs, SetBlendingFunc, void, , 4,                                      \
    (VuBlendingFactor, VuBlendingFactor, VuBlendingFactor, VuBlendingFactor))              \
  X(79, Lock, Lock, bool, , 1, (bool))                                                     \
  X(80, Unlock, Unlock, bool, , 0, ())

#define ZIRK_TRACE_SCREEN_OPERATIONS(X) X(100, SwapBuffers, SwapBuffers, void, , 0, ())

#define ZIRK_TRACE_COMPOSITOR_OPERATIONS(X)                            \
  X(110, SetConfiguration, SetConfiguration, void, , 2, (Layers, int)) \
  X(111, EnableLayer, EnableLayer, void, , 2, (signed char, bool))     \
  X(112, GetVirtualLayerCount, GetVirtualLayerCount, int, , 0, ())     \
  X(113, GetConfiguration, GetConfiguration, void, , 2, (Filled, Out<int>))

/// Events, which are not single operations of an interface: number, name, fields.
#define ZIRK_TRACE_EVENTS(X)                                                                   \
  /* A content, which follows the field: file, font or pixels. */                              \
  X(1, Content, (Id))                                                                          \
  /* A font: content, face index, pixel size, bold, italic. */                                 \
  X(2, MakeFont, (Id, Id, int, int, bool, bool))                                               \
  /* A font's outline and its thickness, fallback glyph; content, face and size of another. */ \
  X(3, StyleFont, (Id, VuFont::OutlineType, int, unsigned, Id, int, int))                      \
  /* A context: the plug-in's file and the requested flag. */                                  \
  X(4, OpenContext, (Id, Text, bool))                                                          \
  X(5, OpenCompositor, (Id, Text, bool))                                                       \
  /* A context, surface or compositor is deleted. */                                           \
  X(6, Close, (Id))                                                                            \
  /* SetPixels(): surface, part, pixels in tight rows, bytes per row of the call, result. */   \
  X(7, SetPixels, (Id, VuRect, Id, unsigned, bool))                                            \
  /* What changed while a surface was locked: surface, part, pixels in tight rows. */          \
  X(8, PixelsWritten, (Id, VuRect, Id))

#define ZIRK_TRACE_OPERATIONS(X)   \
  ZIRK_TRACE_CONTEXT_OPERATIONS(X) \
  ZIRK_TRACE_SURFACE_OPERATIONS(X) \
  ZIRK_TRACE_WATCHED_OPERATIONS(X) \
  ZIRK_TRACE_SCREEN_OPERATIONS(X)  \
  ZIRK_TRACE_COMPOSITOR_OPERATIONS(X)

/// The operation or event of a record.
enum class Operation : uint16_t {
#define X(number, name, ...) name = number,
  ZIRK_TRACE_OPERATIONS(X) ZIRK_TRACE_EVENTS(X)
#undef X
};

/// Returns whether the first field of the record is the Id of the operation's object.
constexpr bool HasObject(Operation operation) {
  return static_cast<int>(operation) >= 20;
}

/// Returns whether the operation may change the pixels of its surface.
constexpr bool ChangesPixels(Operation operation) {
  switch (operation) {
#define X(number, name, ...) case Operation::name:
    ZIRK_TRACE_DRAWING_OPERATIONS(X)
#undef X
    case Operation::SetPixels:
    case Operation::PixelsWritten:
      return true;
    default:
      return false;
  }
}

/// Returns whether the operation is a query.
constexpr bool IsQuery(Operation operation) {
  switch (operation) {
#define X(number, name, method, result, isConst, ...) \
  case Operation::name:                               \
    return sizeof(#isConst) > 1;
    ZIRK_TRACE_OPERATIONS(X)
#undef X
    default:
      return false;
  }
}

/// Returns the operation's name, or null if the number is invalid.
constexpr const char* NameOf(Operation operation) {
  switch (operation) {
#define X(number, name, ...) \
  case Operation::name:      \
    return #name;
    ZIRK_TRACE_OPERATIONS(X)
    ZIRK_TRACE_EVENTS(X)
#undef X
  }
  return nullptr;
}

}  // namespace ZIRK::trace
