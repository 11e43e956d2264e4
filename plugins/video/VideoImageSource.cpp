#include "DecodeBudget.h"
#include "VideoImageSource.h"

#include <vesperon/codecs/MCMovieProperties.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <fmt/format.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}

#include <charconv>
#include <cmath>
#include <cstring>
#include <mutex>

namespace mc_detail {

struct VideoImageSource::Clip {
  std::string name;  // for log lines
  std::shared_ptr<const MCData> data;
  std::size_t position = 0;
  AVIOContext* io = nullptr;
  AVFormatContext* format = nullptr;
  int stream = -1;
  std::size_t width = 0, height = 0;                // coded frame size
  std::size_t displayWidth = 0, displayHeight = 0;  // after the sample aspect ratio
  unsigned orientation = 1;
  double duration = 0;
  double frameRate = 0;
  std::string codec;
  std::string creationTime;
  std::string location;
  double representativeTime = -1;
  std::mutex mutex;  // one decode at a time over the one demuxer

  ~Clip() {
    if (format) avformat_close_input(&format);
    if (io) {
      av_freep(&io->buffer);
      avio_context_free(&io);
    }
  }
};

namespace {

void logFailure(const std::string& name, const std::string& why) {
  MCLog::sdkGraphics()->logError("Couldn't read the video " + name + ": " + why);
}

int readFromMemory(void* opaque, uint8_t* buffer, int size) {
  auto* clip = static_cast<VideoImageSource::Clip*>(opaque);
  const std::size_t left = clip->data->size() - clip->position;
  if (left == 0) return AVERROR_EOF;
  const std::size_t n = std::min<std::size_t>(left, static_cast<std::size_t>(size));
  std::memcpy(buffer, clip->data->data() + clip->position, n);
  clip->position += n;
  return static_cast<int>(n);
}

int64_t seekInMemory(void* opaque, int64_t offset, int whence) {
  auto* clip = static_cast<VideoImageSource::Clip*>(opaque);
  const auto size = static_cast<int64_t>(clip->data->size());
  if (whence & AVSEEK_SIZE) return size;
  int64_t base = 0;
  switch (whence & ~AVSEEK_FORCE) {
    case SEEK_SET: base = 0; break;
    case SEEK_CUR: base = static_cast<int64_t>(clip->position); break;
    case SEEK_END: base = size; break;
    default: return -1;
  }
  const int64_t to = base + offset;
  if (to < 0 || to > size) return -1;
  clip->position = static_cast<std::size_t>(to);
  return to;
}

std::string tag(const AVDictionary* dictionary, const char* key) {
  const AVDictionaryEntry* entry = av_dict_get(dictionary, key, nullptr, 0);
  return entry && entry->value ? entry->value : "";
}

// The clockwise quarter turns the display matrix asks for, as an Exif orientation.
unsigned orientationOf(const AVStream* stream) {
#if LIBAVFORMAT_VERSION_MAJOR < 61
  const uint8_t* matrix = av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
#else
  const AVPacketSideData* side = av_packet_side_data_get(stream->codecpar->coded_side_data,
                                                          stream->codecpar->nb_coded_side_data,
                                                          AV_PKT_DATA_DISPLAYMATRIX);
  const uint8_t* matrix = side ? side->data : nullptr;
#endif
  if (!matrix) return 1;
  const double counterClockwise = av_display_rotation_get(reinterpret_cast<const int32_t*>(matrix));
  if (std::isnan(counterClockwise)) return 1;
  const long quarterTurns = ((std::lround(-counterClockwise / 90.0) % 4) + 4) % 4;
  static constexpr unsigned kOrientations[4] = {1, 6, 3, 8};
  return kOrientations[quarterTurns];
}

bool openClip(VideoImageSource::Clip& clip, const std::filesystem::path* url) {
  if (!url) {
    constexpr int kBufferSize = 1 << 16;
    auto* buffer = static_cast<uint8_t*>(av_malloc(kBufferSize));
    clip.io = buffer ? avio_alloc_context(buffer, kBufferSize, 0, &clip, readFromMemory, nullptr, seekInMemory) : nullptr;
    if (!clip.io) {
      av_free(buffer);
      return false;
    }
    clip.format = avformat_alloc_context();
    if (!clip.format) return false;
    clip.format->pb = clip.io;
    clip.format->flags |= AVFMT_FLAG_CUSTOM_IO;
  }
  if (avformat_open_input(&clip.format, url ? url->c_str() : nullptr, nullptr, nullptr) < 0) {
    clip.format = nullptr;  // freed by FFmpeg on failure
    logFailure(clip.name, "not a file FFmpeg can read");
    return false;
  }
  if (avformat_find_stream_info(clip.format, nullptr) < 0) {
    logFailure(clip.name, "its streams cannot be read");
    return false;
  }
  clip.stream = -1;
  for (unsigned i = 0; i < clip.format->nb_streams; ++i) {
    const AVStream* candidate = clip.format->streams[i];
    if (candidate->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !(candidate->disposition & AV_DISPOSITION_ATTACHED_PIC)) {
      clip.stream = static_cast<int>(i);
      break;
    }
  }
  if (clip.stream < 0) {
    logFailure(clip.name, "it has no video stream");
    return false;
  }
  const AVStream* stream = clip.format->streams[clip.stream];
  const AVCodecParameters* parameters = stream->codecpar;
  if (parameters->width <= 0 || parameters->height <= 0) {
    logFailure(clip.name, "its video stream has no frame size");
    return false;
  }
  clip.width = static_cast<std::size_t>(parameters->width);
  clip.height = static_cast<std::size_t>(parameters->height);
  const AVRational aspect = av_guess_sample_aspect_ratio(clip.format, const_cast<AVStream*>(stream), nullptr);
  clip.displayWidth = clip.width;
  clip.displayHeight = clip.height;
  if (aspect.num > 0 && aspect.den > 0 && aspect.num != aspect.den)
    clip.displayWidth = std::max<std::size_t>(1, std::lround(double(clip.width) * aspect.num / aspect.den));
  clip.orientation = orientationOf(stream);
  if (clip.format->duration > 0) clip.duration = double(clip.format->duration) / AV_TIME_BASE;
  else if (stream->duration > 0) clip.duration = double(stream->duration) * av_q2d(stream->time_base);
  if (stream->avg_frame_rate.num > 0 && stream->avg_frame_rate.den > 0) clip.frameRate = av_q2d(stream->avg_frame_rate);
  clip.codec = avcodec_get_name(parameters->codec_id);
  clip.creationTime = tag(clip.format->metadata, "creation_time");
  if (clip.creationTime.empty()) clip.creationTime = tag(stream->metadata, "creation_time");
  clip.location = tag(clip.format->metadata, "location");
  if (clip.location.empty()) clip.location = tag(clip.format->metadata, "com.apple.quicktime.location.ISO6709");
  return true;
}

// Whether a frame is (nearly) black: its brightest spot, seen at 32 × 32, is still dark.
bool isBlack(const AVFrame* frame) {
  constexpr int kSide = 32;
  SwsContext* scaler = sws_getContext(frame->width, frame->height, static_cast<AVPixelFormat>(frame->format), kSide,
                                      kSide, AV_PIX_FMT_GRAY8, SWS_AREA, nullptr, nullptr, nullptr);
  if (!scaler) return false;
  uint8_t gray[kSide * kSide];
  uint8_t* planes[4] = {gray, nullptr, nullptr, nullptr};
  int strides[4] = {kSide, 0, 0, 0};
  sws_scale(scaler, frame->data, frame->linesize, 0, frame->height, planes, strides);
  sws_freeContext(scaler);
  // Limited-range video puts black at 16.
  return *std::max_element(gray, gray + sizeof gray) < 40;
}

}  // namespace

std::shared_ptr<VideoImageSource> VideoImageSource::create(const std::filesystem::path& url,
                                                           const MCImageSourceOptions& options) {
  auto clip = std::make_unique<Clip>();
  clip->name = url.string();
  if (!openClip(*clip, &url)) return nullptr;
  return std::shared_ptr<VideoImageSource>(new VideoImageSource(std::move(clip), options));
}

std::shared_ptr<VideoImageSource> VideoImageSource::create(std::shared_ptr<const MCData> data,
                                                           const MCImageSourceOptions& options) {
  if (!data || data->empty()) return nullptr;
  auto clip = std::make_unique<Clip>();
  clip->name = "in memory";
  clip->data = std::move(data);
  if (!openClip(*clip, nullptr)) return nullptr;
  return std::shared_ptr<VideoImageSource>(new VideoImageSource(std::move(clip), options));
}

VideoImageSource::VideoImageSource(std::unique_ptr<Clip> clip, MCImageSourceOptions options)
    : clip_(std::move(clip)), options_(std::move(options)) {}

VideoImageSource::~VideoImageSource() = default;

bool VideoImageSource::frame(std::size_t maxPixelSize, RGBAPixels& out) {
  Clip& clip = *clip_;
  std::lock_guard lock(clip.mutex);
  if (!withinDecodeBudget(clip.name, clip.width, clip.height, options_.decodePixelLimit(), "the video")) return false;
  AVStream* stream = clip.format->streams[clip.stream];
  const AVCodec* decoder = avcodec_find_decoder(stream->codecpar->codec_id);
  if (!decoder) {
    logFailure(clip.name, "no decoder for " + clip.codec);
    return false;
  }
  struct Resources {
    AVCodecContext* context = nullptr;
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    AVFrame* chosen = av_frame_alloc();
    AVFrame* fallback = av_frame_alloc();
    ~Resources() {
      avcodec_free_context(&context);
      av_packet_free(&packet);
      av_frame_free(&frame);
      av_frame_free(&chosen);
      av_frame_free(&fallback);
    }
  } r;
  r.context = avcodec_alloc_context3(decoder);
  if (!r.context || !r.packet || !r.frame || !r.chosen || !r.fallback ||
      avcodec_parameters_to_context(r.context, stream->codecpar) < 0) {
    logFailure(clip.name, "out of memory");
    return false;
  }
  r.context->thread_count = 1;  // the pipeline runs sources in parallel already
  if (avcodec_open2(r.context, decoder, nullptr) < 0) {
    logFailure(clip.name, "its " + clip.codec + " decoder does not open");
    return false;
  }

  // About a tenth into the clip; seek to the key frame before it and decode up to it.
  const int64_t start = stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
  int64_t target = start;
  if (clip.duration > 0)
    target = start + av_rescale_q(static_cast<int64_t>(clip.duration * 0.1 * AV_TIME_BASE), AV_TIME_BASE_Q,
                                  stream->time_base);
  if (av_seek_frame(clip.format, clip.stream, target, AVSEEK_FLAG_BACKWARD) < 0)
    av_seek_frame(clip.format, clip.stream, start, AVSEEK_FLAG_BACKWARD);
  if (clip.io) avio_flush(clip.io);

  constexpr int kMostFrames = 900;   // a long group of pictures, at most
  constexpr int kMostBlackFrames = 150;
  int decoded = 0, black = 0;
  bool haveChosen = false, haveFallback = false, draining = false;
  while (decoded < kMostFrames) {
    const int received = avcodec_receive_frame(r.context, r.frame);
    if (received == 0) {
      ++decoded;
      const int64_t pts = r.frame->best_effort_timestamp;
      const bool beforeTarget = pts != AV_NOPTS_VALUE && pts < target;
      if (beforeTarget || !haveFallback) {
        // The latest frame before the target stands in when the clip ends before it.
        av_frame_unref(r.fallback);
        av_frame_ref(r.fallback, r.frame);
        haveFallback = true;
      }
      if (!beforeTarget) {
        if (!isBlack(r.frame)) {
          av_frame_move_ref(r.chosen, r.frame);
          haveChosen = true;
          break;
        }
        if (++black > kMostBlackFrames) break;
      }
      av_frame_unref(r.frame);
      continue;
    }
    if (received != AVERROR(EAGAIN) || draining) break;  // the end, or a decoder that gave up
    if (av_read_frame(clip.format, r.packet) < 0) {
      draining = true;
      avcodec_send_packet(r.context, nullptr);
      continue;
    }
    if (r.packet->stream_index == clip.stream) avcodec_send_packet(r.context, r.packet);  // a bad packet is skipped
    av_packet_unref(r.packet);
  }
  const AVFrame* picked = haveChosen ? r.chosen : haveFallback ? r.fallback : nullptr;
  if (!picked || picked->width <= 0 || picked->height <= 0) {
    logFailure(clip.name, "no frame could be decoded");
    return false;
  }
  if (picked->best_effort_timestamp != AV_NOPTS_VALUE)
    clip.representativeTime = std::max(0.0, double(picked->best_effort_timestamp - start) * av_q2d(stream->time_base));

  // Display size from the frame (a stream may change size), with the clip's sample aspect ratio.
  std::size_t displayWidth = static_cast<std::size_t>(picked->width);
  const std::size_t displayHeight = static_cast<std::size_t>(picked->height);
  if (clip.width > 0) displayWidth = std::max<std::size_t>(1, displayWidth * clip.displayWidth / clip.width);
  std::size_t width = 0, height = 0;
  fitWithin(displayWidth, displayHeight, maxPixelSize, width, height);
  SwsContext* scaler = sws_getContext(picked->width, picked->height, static_cast<AVPixelFormat>(picked->format),
                                      int(width), int(height), AV_PIX_FMT_RGBA,
                                      (width < displayWidth ? SWS_AREA : SWS_BICUBIC) | SWS_ACCURATE_RND, nullptr,
                                      nullptr, nullptr);
  if (!scaler) {
    logFailure(clip.name, "its pixel format cannot be converted");
    return false;
  }
  out.width = width;
  out.height = height;
  out.bytes.assign(width * height * 4, 0);
  uint8_t* planes[4] = {out.bytes.data(), nullptr, nullptr, nullptr};
  int strides[4] = {int(width * 4), 0, 0, 0};
  sws_scale(scaler, picked->data, picked->linesize, 0, picked->height, planes, strides);
  sws_freeContext(scaler);
  return true;
}

MCRasterImageRef VideoImageSource::newImage() {
  RGBAPixels pixels;
  if (!frame(0, pixels)) return nullptr;
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

MCRasterImageRef VideoImageSource::newThumbnailWithOptions(const MCThumbnailReadingOptions& options) {
  // A clip holds no still thumbnail of its own: one is made from a frame when asked for.
  if (!options.createThumbnailFromImageAlways && !options.createThumbnailFromImageIfAbsent) return nullptr;
  // The budget of a thumbnail read is its own when given.
  MCImageSourceOptions saved = options_;
  if (options.maxDecodePixelCount) options_.maxDecodePixelCount = options.maxDecodePixelCount;
  RGBAPixels pixels;
  const bool ok = frame(static_cast<std::size_t>(options.thumbnailMaxPixelSize), pixels);
  options_ = saved;
  if (!ok) return nullptr;
  if (options.createThumbnailWithTransform) {
    const unsigned orientation = options.orientation != 0 ? unsigned(options.orientation) : clip_->orientation;
    pixels = applyOrientation(std::move(pixels), orientation);
  }
  return MCRasterImage::createRGBA8(pixels.width, pixels.height, std::move(pixels.bytes));
}

namespace {

// "2024-05-01T10:00:00.000000Z" as an Exif date ("2024:05:01 10:00:00"), or "".
std::string exifDate(const std::string& iso) {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  if (std::sscanf(iso.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d", &year, &month, &day, &hour, &minute, &second) != 6) return "";
  if (year < 1900 || month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60) return "";
  return fmt::format("{:04}:{:02}:{:02} {:02}:{:02}:{:02}", year, month, day, hour, minute, second);
}

// One signed decimal of an ISO 6709 point at `p` ("+48.8584", "-002.2945"): a sign, digits and
// an optional fraction, read in no locale. None for anything else, "nan", "inf" and hexadecimal
// included, which a plain strtod would take.
std::optional<double> signedDecimal(const char*& p, const char* end) {
  if (p == end || (*p != '+' && *p != '-')) return std::nullopt;
  const bool negative = *p == '-';
  const char* const digits = p + 1;
  const char* q = digits;
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  while (q != end && isDigit(*q)) ++q;
  if (q == digits) return std::nullopt;
  if (q != end && *q == '.')
    for (++q; q != end && isDigit(*q);) ++q;
  double value = 0;
  const auto [stop, error] = std::from_chars(digits, q, value);
  if (error != std::errc() || stop != q || !std::isfinite(value)) return std::nullopt;
  p = q;
  return negative ? -value : value;
}

// An ISO 6709 point ("+48.8584+002.2945+035.000/" or without the altitude) as a {GPS} dictionary.
// A latitude or longitude that is not a number within ±90 and ±180 is no location at all; an
// altitude that is not a number is left out.
std::optional<MCDictionary> gpsOf(const std::string& location) {
  const char* p = location.data();
  const char* const end = p + location.size();
  const auto latitude = signedDecimal(p, end);
  const auto longitude = latitude ? signedDecimal(p, end) : std::nullopt;
  if (!latitude || !longitude || std::fabs(*latitude) > 90 || std::fabs(*longitude) > 180) return std::nullopt;
  const auto altitude = signedDecimal(p, end);
  MCDictionary gps;
  gps[kCGImagePropertyGPSLatitude] = MCValue(std::fabs(*latitude));
  gps[kCGImagePropertyGPSLatitudeRef] = MCValue(std::string(*latitude < 0 ? "S" : "N"));
  gps[kCGImagePropertyGPSLongitude] = MCValue(std::fabs(*longitude));
  gps[kCGImagePropertyGPSLongitudeRef] = MCValue(std::string(*longitude < 0 ? "W" : "E"));
  if (altitude) {
    gps[kCGImagePropertyGPSAltitude] = MCValue(std::fabs(*altitude));
    gps[kCGImagePropertyGPSAltitudeRef] = MCValue(int64_t(*altitude < 0 ? 1 : 0));
  }
  return gps;
}

}  // namespace

std::optional<MCDictionary> VideoImageSource::metadataWithOptions(const std::optional<MCMetadataReadingOptions>&) {
  const Clip& clip = *clip_;
  MCDictionary properties;
  properties[kCGImagePropertyPixelWidth] = MCValue(int64_t(clip.displayWidth));
  properties[kCGImagePropertyPixelHeight] = MCValue(int64_t(clip.displayHeight));
  properties[kCGImagePropertyOrientation] = MCValue(int64_t(clip.orientation));
  properties[kCGImagePropertyColorModel] = MCValue(std::string(kCGImagePropertyColorModelRGB));
  MCDictionary exif;
  exif[kCGImagePropertyExifPixelXDimension] = MCValue(int64_t(clip.displayWidth));
  exif[kCGImagePropertyExifPixelYDimension] = MCValue(int64_t(clip.displayHeight));
  if (const std::string date = exifDate(clip.creationTime); !date.empty()) {
    exif[kCGImagePropertyExifDateTimeOriginal] = MCValue(date);
    exif[kCGImagePropertyExifOffsetTimeOriginal] = MCValue(std::string("+00:00"));  // containers keep UTC
  }
  properties[kCGImagePropertyExifDictionary] = MCValue(std::move(exif));
  if (auto gps = gpsOf(clip.location)) properties[kCGImagePropertyGPSDictionary] = MCValue(std::move(*gps));
  MCDictionary movie;
  if (clip.duration > 0) movie[kMCImagePropertyMovieDuration] = MCValue(clip.duration);
  movie[kMCImagePropertyMovieCodec] = MCValue(clip.codec);
  if (clip.frameRate > 0) movie[kMCImagePropertyMovieFrameRate] = MCValue(clip.frameRate);
  if (clip.representativeTime >= 0) movie[kMCImagePropertyMovieRepresentativeTime] = MCValue(clip.representativeTime);
  properties[kMCImagePropertyMovieDictionary] = MCValue(std::move(movie));
  return properties;
}

}  // namespace mc_detail
