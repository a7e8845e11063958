// Colour profiles (ICC.1) made by Little CMS.
#pragma once

#include <lcms2.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace kestrin::profiles {

using Profile = std::unique_ptr<void, decltype(&cmsCloseProfile)>;
using Curve = std::unique_ptr<cmsToneCurve, decltype(&cmsFreeToneCurve)>;

inline std::string bytesOf(const Profile& profile) {
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile.get(), nullptr, &size);
    std::string bytes(size, '\0');
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &size)) throw std::runtime_error("no profile");
    return bytes;
}

inline std::string sRGB() {
    return bytesOf({cmsCreate_sRGBProfile(), cmsCloseProfile});
}

// The primaries of DCI-P3 with the white and the curve of sRGB.
inline std::string displayP3() {
    const cmsFloat64Number sRGBCurve[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    const Curve curve(cmsBuildParametricToneCurve(nullptr, 4, sRGBCurve), cmsFreeToneCurve);
    cmsToneCurve* const curves[] = {curve.get(), curve.get(), curve.get()};
    const cmsCIExyY white = {0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries = {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}};
    return bytesOf({cmsCreateRGBProfile(&white, &primaries, curves), cmsCloseProfile});
}

inline std::string grey(double gamma) {
    const Curve curve(cmsBuildGamma(nullptr, gamma), cmsFreeToneCurve);
    return bytesOf({cmsCreateGrayProfile(cmsD50_xyY(), curve.get()), cmsCloseProfile});
}

}  // namespace kestrin::profiles
