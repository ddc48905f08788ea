// Daylight at places from the equator to the Arctic through a year, and the great circles between them. The
// sun's position is the low-precision one of the Astronomical Almanac (right to 0.01 degrees from 1950 to
// 2050). Where the sun does not set, or does not rise, the hour angle of its setting is the arc cosine of a
// number beyond 1: a domain error, which a callback of ours turns into the answer.
//
// daylight STATIONS_CSV OUT_DIR
// STATIONS_CSV has rows "name,latitude,longitude", in degrees, north and east positive.
// Writes OUT_DIR/daylight.csv (day length of each station) and OUT_DIR/elevation.csv (of the last station).
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <qkr/qkr.h>
#include <sstream>
#include <string>
#include <vector>

using Array = std::vector<double>;

constexpr double pi = 3.14159265358979323846, radian = pi / 180;
constexpr double earth_radius = 6371.0088;  // km, mean radius of the reference ellipsoid
constexpr double first_day = 9496.5;        // 0h on 1 January 2026, in days since 12h on 1 January 2000
constexpr double sunset = -0.833 * radian;  // elevation: half the sun's disc and the refraction of the air
constexpr int days = 365, times_a_day = 48;

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "daylight: %s\n", message.c_str());
  std::exit(1);
}

// The array forms of the functions that follow, with the length taken from the argument.
static Array cosines(const Array &x) {
  Array r(x.size());
  _vxmdCos_HA(static_cast<int32_t>(x.size()), x.data(), r.data());
  return r;
}

static Array arcsines(const Array &x) {
  Array r(x.size());
  _vxmdAsin_HA(static_cast<int32_t>(x.size()), x.data(), r.data());
  return r;
}

static Array arctangents(const Array &y, const Array &x) {
  Array r(x.size());
  _vxmdAtan2_HA(static_cast<int32_t>(x.size()), y.data(), x.data(), r.data());
  return r;
}

struct SineCosine {
  Array sin, cos;
  explicit SineCosine(const Array &x) : sin(x.size()), cos(x.size()) {
    _vxmdSinCos_HA(static_cast<int32_t>(x.size()), x.data(), sin.data(), cos.data());
  }
};

template <class Formula>
static Array each(size_t n, Formula formula) {
  Array r(n);
  for (size_t i = 0; i < n; ++i) r[i] = formula(i);
  return r;
}

struct Stations {
  std::vector<std::string> name;
  Array latitude, longitude;  // radians
};

static Stations read(const std::string &path) {
  std::ifstream file(path);
  if (!file) fail("cannot read " + path);
  Stations stations;
  int line_number = 0;
  for (std::string line; std::getline(file, line);) {
    ++line_number;
    if (line.empty() || line[0] == '#' || line == "name,latitude,longitude") continue;
    std::istringstream row(line);
    std::string name;
    double latitude, longitude;
    char comma;
    if (!std::getline(row, name, ',') || !(row >> latitude >> comma >> longitude) || comma != ',' ||
        !(std::abs(latitude) <= 90) || !(std::abs(longitude) <= 180) || row.peek() != EOF)
      fail(path + ", line " + std::to_string(line_number) +
           ": not a row \"name,latitude,longitude\": " + line);
    stations.name.push_back(name);
    stations.latitude.push_back(latitude * radian);
    stations.longitude.push_back(longitude * radian);
  }
  if (stations.name.empty()) fail("no station in " + path);
  return stations;
}

// Declination of the sun, and the angle by which it is ahead of a clock that runs evenly, in radians.
struct Sun {
  Array declination, ahead;
  explicit Sun(const Array &day) {  // days since 12h on 1 January 2000
    const size_t n = day.size();
    const Array mean = each(n, [&](size_t i) { return (280.460 + 0.9856474 * day[i]) * radian; });
    const SineCosine anomaly(each(n, [&](size_t i) { return (357.528 + 0.9856003 * day[i]) * radian; }));
    const SineCosine ecliptic(each(n, [&](size_t i) {
      return mean[i] + (1.915 + 0.040 * anomaly.cos[i]) * anomaly.sin[i] * radian;  // 0.020 sin 2g
    }));
    const SineCosine obliquity(each(n, [&](size_t i) { return (23.439 - 4e-7 * day[i]) * radian; }));
    declination = arcsines(each(n, [&](size_t i) { return obliquity.sin[i] * ecliptic.sin[i]; }));
    const Array ascension =
        arctangents(each(n, [&](size_t i) { return obliquity.cos[i] * ecliptic.sin[i]; }), ecliptic.cos);
    ahead = each(n, [&](size_t i) { return std::remainder(mean[i] - ascension[i], 2 * pi); });
  }
};

// Acos beyond its domain: the sun stays above the horizon (half a turn to its setting) or below it.
static int32_t never_sets_or_rises(VxmErrorContext *element) {
  if (element->iCode == VXM_STATUS_ERRDOM) element->dbR1 = element->dbA1 < 0 ? pi : 0;
  return 0;
}

// Hours from sunrise to sunset, day by day.
static Array day_length(const Sun &sun, double latitude) {
  const SineCosine declination(sun.declination);
  const Array cosine = each(days, [&](size_t i) {
    return (std::sin(sunset) - std::sin(latitude) * declination.sin[i]) /
           (std::cos(latitude) * declination.cos[i]);
  });
  const int32_t mode = _vxmSetMode(VXM_MODE_CALLBACK);  // nothing but the callback: no errno, no exception
  const VxmErrorCallBack before = _vxmSetErrorCallBack(never_sets_or_rises);
  Array angle(days);
  _vxmdAcos_HA(days, cosine.data(), angle.data());  // not in place: the callback looks at the argument
  _vxmSetErrorCallBack(before);
  _vxmSetMode(mode);
  return each(days, [&](size_t i) { return angle[i] * 24 / pi; });
}

// Distance over the sphere in km of all pairs: accurate for near and for opposite places alike.
static Array distances(const Stations &stations) {
  const size_t n = stations.name.size();
  const SineCosine latitude(stations.latitude);
  const SineCosine apart(
      each(n * n, [&](size_t i) { return stations.longitude[i % n] - stations.longitude[i / n]; }));
  const auto from = [&](size_t i) { return i / n; };
  const auto to = [&](size_t i) { return i % n; };
  const Array east = each(n * n, [&](size_t i) { return latitude.cos[to(i)] * apart.sin[i]; });
  const Array north = each(n * n, [&](size_t i) {
    return latitude.cos[from(i)] * latitude.sin[to(i)] -
           latitude.sin[from(i)] * latitude.cos[to(i)] * apart.cos[i];
  });
  const Array along = each(n * n, [&](size_t i) {
    return latitude.sin[from(i)] * latitude.sin[to(i)] +
           latitude.cos[from(i)] * latitude.cos[to(i)] * apart.cos[i];
  });
  Array across(n * n);
  _vxmdHypot_HA(static_cast<int32_t>(n * n), east.data(), north.data(), across.data());
  const Array angle = arctangents(across, along);
  return each(n * n, [&](size_t i) { return earth_radius * angle[i]; });
}

int main(int argc, char **argv) {
  if (argc != 3) fail("usage: daylight STATIONS_CSV OUT_DIR");
  const Stations stations = read(argv[1]);
  const std::string out_dir = argv[2];
  const size_t count = stations.name.size();

  const Sun noon(each(days, [](size_t i) { return first_day + 0.5 + static_cast<double>(i); }));
  std::vector<Array> hours;
  for (double latitude : stations.latitude) hours.push_back(day_length(noon, latitude));

  std::printf("%-14s %10s %10s %10s %8s %8s\n", "2026", "21 March", "21 June", "21 Dec", "no night",
              "no day");
  for (size_t s = 0; s < count; ++s) {
    int no_night = 0, no_day = 0;
    for (double h : hours[s]) no_night += h == 24, no_day += h == 0;
    std::printf("%-14s %8.2f h %8.2f h %8.2f h %6d d %6d d\n", stations.name[s].c_str(), hours[s][79],
                hours[s][171], hours[s][354], no_night, no_day);
  }

  const Array km = distances(stations);
  std::printf("\nover the great circle, km\n%-14s", "");
  for (size_t s = 1; s < count; ++s) std::printf(" %13s", stations.name[s].c_str());
  for (size_t from = 0; from + 1 < count; ++from) {
    std::printf("\n%-14s", stations.name[from].c_str());
    for (size_t to = 1; to < count; ++to)
      to > from ? std::printf(" %13.1f", km[from * count + to]) : std::printf(" %13s", "");
  }
  std::printf("\n");

  std::ofstream day_file(out_dir + "/daylight.csv"), elevation_file(out_dir + "/elevation.csv");
  day_file << std::setprecision(9) << "day";
  for (const std::string &name : stations.name) day_file << ',' << name;
  for (int day = 0; day < days; ++day) {
    day_file << '\n' << day + 1;
    for (const Array &h : hours) day_file << ',' << h[day];
  }
  day_file << '\n';

  // Elevation of the sun over the last station, by day and time of day (UTC).
  constexpr size_t moments = size_t{days} * times_a_day;
  const double latitude = stations.latitude.back(), longitude = stations.longitude.back();
  const Sun sun(each(moments, [](size_t i) { return first_day + double(i) / times_a_day; }));
  const SineCosine declination(sun.declination);
  const Array turn = cosines(each(moments, [&](size_t i) {
    return (double(i % times_a_day) / times_a_day * 2 - 1) * pi + longitude + sun.ahead[i];
  }));
  const Array elevation = arcsines(each(moments, [&](size_t i) {
    return std::sin(latitude) * declination.sin[i] + std::cos(latitude) * declination.cos[i] * turn[i];
  }));
  elevation_file << std::setprecision(9) << "day,hour,elevation\n";
  for (size_t i = 0; i < moments; ++i)
    elevation_file << i / times_a_day + 1 << ',' << i % times_a_day * 24.0 / times_a_day << ','
                   << elevation[i] / radian << '\n';
  day_file.close(), elevation_file.close();
  if (!day_file || !elevation_file) fail("cannot write to " + out_dir);
}
