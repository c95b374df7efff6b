#pragma once

// The host's plug-in interface. Includes its headers in the order in which they depend on each other, as
// FMXCalcEngine.h does not include the others.
// clang-format off
#include "FMWrapper/FMXTypes.h"
#include "FMWrapper/FMXText.h"
#include "FMWrapper/FMXFixPt.h"
#include "FMWrapper/FMXDateTime.h"
#include "FMWrapper/FMXBinaryData.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXCalcEngine.h"
// clang-format on

// The owning holders of the host's objects. Interface versions up to 61 call them <Class>AutoPtr, those from
// 71 on <Class>UniquePtr; those between have both. The declarations below make both names known in every
// version: a class that the interface does not have stays incomplete, which tells them apart. Some versions
// mark the older names as deprecated.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace fmx {

class BinaryDataAutoPtr;
class BinaryDataUniquePtr;
class DataAutoPtr;
class DataUniquePtr;
class DataVectAutoPtr;
class DataVectUniquePtr;
class DateTimeAutoPtr;
class DateTimeUniquePtr;
class ExprEnvAutoPtr;
class ExprEnvUniquePtr;
class LocaleAutoPtr;
class LocaleUniquePtr;
class QuadCharAutoPtr;
class QuadCharUniquePtr;
class TextAutoPtr;
class TextUniquePtr;

} // namespace fmx

namespace host_interface {

template <class Holder>
concept Complete = requires { sizeof(Holder); };

template <class Unique, class Auto>
struct Holder {
    using Type = Auto;
};
template <Complete Unique, class Auto>
struct Holder<Unique, Auto> {
    using Type = Unique;
};

} // namespace host_interface

namespace koru {

// Called Owned... because Apple's headers have a global TextPtr.
using OwnedBinaryData = host_interface::Holder<fmx::BinaryDataUniquePtr, fmx::BinaryDataAutoPtr>::Type;
using OwnedData = host_interface::Holder<fmx::DataUniquePtr, fmx::DataAutoPtr>::Type;
using OwnedDataVect = host_interface::Holder<fmx::DataVectUniquePtr, fmx::DataVectAutoPtr>::Type;
using OwnedDateTime = host_interface::Holder<fmx::DateTimeUniquePtr, fmx::DateTimeAutoPtr>::Type;
using OwnedExprEnv = host_interface::Holder<fmx::ExprEnvUniquePtr, fmx::ExprEnvAutoPtr>::Type;
using OwnedLocale = host_interface::Holder<fmx::LocaleUniquePtr, fmx::LocaleAutoPtr>::Type;
using OwnedQuadChar = host_interface::Holder<fmx::QuadCharUniquePtr, fmx::QuadCharAutoPtr>::Type;
using OwnedText = host_interface::Holder<fmx::TextUniquePtr, fmx::TextAutoPtr>::Type;

// One unit of UTF-16, which the interfaces call unichar or unichar16.
using TextUnit = fmx::uint16;

} // namespace koru

#pragma GCC diagnostic pop
