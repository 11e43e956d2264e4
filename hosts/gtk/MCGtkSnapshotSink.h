#pragma once
// MCGtkSnapshotSink: turns what a recording MCGraphicsContext draws into GSK render nodes of a
// GtkSnapshot, in device pixels: images become texture nodes (through the host's texture cache),
// solid rectangles colour nodes, plain text layouts text nodes, their clips clip and rounded-clip
// nodes, and each run of other drawing one Cairo node as large as its ink.
//
// Images sampled nearest-neighbour, and any image under a transform that is not a scale, are left
// to Cairo: GTK's texture nodes filter linearly.

#include "MCGtkTextureCache.h"

#include <vesperon/platform/MCDrawingSink.h>

#include <gdk/gdk.h>

#include <optional>

typedef struct _GdkSnapshot GdkSnapshot;
typedef struct _GdkTexture GdkTexture;

class MCGtkSnapshotSink : public MCDrawingSink {
 public:
  /// A sink that appends to `snapshot`, whose units must be the context's device pixels.
  /// With `cairoImages` (GTK's Cairo renderer, which converts a texture's every pixel each time it
  /// draws one) images become Cairo nodes that paint the cache's image surfaces.
  MCGtkSnapshotSink(GdkSnapshot* snapshot, MCGtkTextureCache& textures, bool cairoImages = false)
      : snapshot_(snapshot), textures_(textures), cairoImages_(cairoImages) {}

  void drawRecording(cairo_surface_t* recording, const MCRect& inkExtents) override;
  bool fillRect(const MCRect& rect, const MCDrawingClip& clip, double red, double green, double blue,
                double alpha) override;
  bool drawImage(const MCRasterImageRef& image, const MCDrawingImageOp& op) override;
  bool drawLayout(PangoLayout* layout, const MCDrawingTextOp& op) override;
  /// Appends the fill held back for the next op; call when the drawing is over.
  void flushPendingFill();

  /// How many nodes of each kind the sink made; for tests and benchmarks.
  struct Counts {
    std::size_t cairo = 0, color = 0, texture = 0, text = 0;
  };
  const Counts& counts() const { return counts_; }

 private:
  /// Pushes the clip nodes `clip` needs around something covering `bounds`; answers how many to pop.
  int pushClip(const MCDrawingClip& clip, const MCRect& bounds);
  void pop(int count);
  /// A texture drawn upright and turned about the middle of `target` across one axis or both.
  void drawMirrored(GdkTexture* texture, const MCRect& target, bool acrossX, bool acrossY);
  bool drawImageWithCairo(const MCRasterImageRef& image, const MCDrawingImageOp& op, const MCRect& target);

  GdkSnapshot* snapshot_;
  MCGtkTextureCache& textures_;
  bool cairoImages_;
  Counts counts_;
  struct PendingFill {
    MCRect rect;
    MCDrawingClip clip;
    GdkRGBA color;
  };
  std::optional<PendingFill> pending_;
};
