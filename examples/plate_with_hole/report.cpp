#include "report.h"

#include "content.h"
#include "kirsch.h"

#include <algorithm>
#include <cstdio>

namespace plate {
namespace {

std::string kinds_of(Mesh const& mesh) {
  std::vector<const ElementKind*> kinds;
  for (Element const& element : mesh.elements) {
    if (std::find(kinds.begin(), kinds.end(), element.kind) == kinds.end()) kinds.push_back(element.kind);
  }
  std::string names;
  for (const ElementKind* kind : kinds) names.append(names.empty() ? "" : "+").append(kind->name);
  return names;
}

/// The value in the given printf format, or "-" where there is none.
std::string text(const char* format, std::optional<double> const& value) {
  if (!value) return "-";
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, *value);
  return buffer;
}

std::string located_text(Section const& section) {
  return std::to_string(section.located()) + "/" + std::to_string(section.points.size());
}

std::optional<double> concentration_error(Section const& section) {
  std::optional<double> error = section.concentration();
  if (error) *error -= exact_concentration;
  return error;
}

void print_title() {
  std::printf("Plate with a circular hole of radius 1 under the tension 1 along x; section x = 0 above the hole\n\n");
}

constexpr const char* content_head = "%-*s %8s %-10s %11s %10s";
constexpr const char* section_columns = " %11s %9s %7s %9s %10s\n";

void print_mesh_head(int file_width) {
  std::printf(content_head, file_width, "", "", "", "area or", "its");
  std::printf(section_columns, "points", "stress,", "tilt", "K at", "its");
  std::printf(content_head, file_width, "mesh", "elements", "", "volume", "error");
  std::printf(section_columns, "located", "max error", "[deg]", "the hole", "error");
}

void print_mesh_row(Result const& result, int file_width) {
  std::printf("%-*s %8zu %-10s %11.6f %10.2e", file_width, result.file.c_str(), result.elements, result.kinds.c_str(),
              result.content, result.content - result.exact_content);
  if (!result.section) {
    std::printf(section_columns, "-", "-", "-", "-", "-");
    return;
  }
  Section const& section = *result.section;
  std::printf(section_columns, located_text(section).c_str(),
              text("%.2e", section.max_error(&HoleStress::tangential)).c_str(),
              text("%.3f", section.max_tilt()).c_str(), text("%.6f", section.concentration()).c_str(),
              text("%.2e", concentration_error(section)).c_str());
}

constexpr const char* stress_columns = "%-*s %10s %10s %10s %12s %10s  %s\n";

void print_stress_head(int file_width) {
  std::printf("\nStress in the hole's axes; the tangential one fitted over x = (a/r)^2, exactly %s\n\n",
              exact_equation);
  std::printf(stress_columns, file_width, "", "radial,", "shear,", "radial at", "", "", "fitted");
  std::printf(stress_columns, file_width, "mesh", "max error", "max error", "the hole", "R squared", "norm",
              "equation");
}

void print_stress_row(Result const& result, int file_width) {
  if (!result.section) {
    std::printf(stress_columns, file_width, result.file.c_str(), "-", "-", "-", "-", "-", "-");
    return;
  }
  Section const& section = *result.section;
  std::optional<double> r_squared;
  std::optional<double> norm;
  std::string equation = "-";
  if (auto const& curve = result.profile.curve) {
    r_squared = curve->Rsquared();
    norm = curve->Norm();
    equation = curve->Equation(false);
  }
  std::printf(
      stress_columns, file_width, result.file.c_str(), text("%.2e", section.max_error(&HoleStress::radial)).c_str(),
      text("%.2e", section.max_error(&HoleStress::shear)).c_str(), text("%.2e", section.radial_at_hole()).c_str(),
      text("%.8f", r_squared).c_str(), text("%.2e", norm).c_str(), equation.c_str());
}

/// The points outside the mesh, on one line, the first few by name.
void print_outside(Result const& result) {
  Section const& section = *result.section;
  const int outside = static_cast<int>(section.points.size()) - section.located();
  if (outside == 0) return;
  std::printf("%s: outside the mesh: %d of the %zu points, y =", result.file.c_str(), outside, section.points.size());
  constexpr int most = 5;
  int shown = 0;
  for (SectionPoint const& point : section.points) {
    if (point.computed) continue;
    if (++shown > most) break;
    std::printf(" %g", point.position.y);
  }
  std::printf(shown > most ? " ...\n" : "\n");
}

}  // namespace

Result evaluate(Mesh const& mesh, const StressField* field, int points) {
  Result result{mesh.file,
                mesh.elements.size(),
                kinds_of(mesh),
                gauss_content(mesh),
                exact_content(bounds_of(mesh)),
                std::nullopt,
                {}};
  if (field != nullptr) {
    result.section = evaluate_section(mesh, *field, points);
    result.profile = fit_profile(*result.section);
  }
  return result;
}

void print_report(std::vector<Result> const& results) {
  std::size_t longest = 4;
  for (Result const& result : results) longest = std::max(longest, result.file.size());
  const int file_width = static_cast<int>(longest);

  print_title();
  print_mesh_head(file_width);
  for (Result const& result : results) print_mesh_row(result, file_width);
  print_stress_head(file_width);
  for (Result const& result : results) print_stress_row(result, file_width);
  for (Result const& result : results) {
    if (result.section) {
      print_outside(result);
      if (!result.profile.curve) std::printf("%s: no fit: %s\n", result.file.c_str(), result.profile.why_not.c_str());
    } else {
      std::printf("%s: no section: of the solid elements, talvo finds points in hexahedra only\n", result.file.c_str());
    }
  }
}

}  // namespace plate
