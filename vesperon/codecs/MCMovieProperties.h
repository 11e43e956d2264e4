#pragma once
// The keys of what a video source tells about its clip, beside the image property dictionary's own
// keys (pixel size, orientation, {Exif} capture date, {GPS} location): a "{Movie}" sub-dictionary.
// The platform's image properties have no such group; these keys are the library's own.

/// The key of the "{Movie}" sub-dictionary.
inline constexpr const char* kMCImagePropertyMovieDictionary = "{Movie}";
/// The clip's length in seconds (a real number).
inline constexpr const char* kMCImagePropertyMovieDuration = "Duration";
/// The video stream's codec, by FFmpeg's short name ("h264", "hevc", "vp9" …).
inline constexpr const char* kMCImagePropertyMovieCodec = "Codec";
/// Frames per second (a real number), when the container tells.
inline constexpr const char* kMCImagePropertyMovieFrameRate = "FrameRate";
/// The time of the frame shown as the clip's image and thumbnail, in seconds from the start.
inline constexpr const char* kMCImagePropertyMovieRepresentativeTime = "RepresentativeTime";
