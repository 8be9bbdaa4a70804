#include "mesh_file.h"

#include "lines.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>

namespace plate {
namespace {

/// The sections of a mesh file, in the words of Gmsh's own description of its formats.
///
/// A count in the file is only ever compared with what follows, never used to reserve memory, so that a wrong one
/// costs nothing.
class MeshFile {
 public:
  explicit MeshFile(std::string const& file) : lines_(file) { mesh_.file = file; }

  Mesh read() {
    read_format();
    while (lines_.next()) {
      const std::string section(lines_.field());
      if (section.empty()) continue;
      if (section.front() != '$') lines_.fail("a section ($...) expected, not " + Lines::quoted(section));
      if (section == "$Nodes") {
        version_ == Version::v41 ? read_node_blocks() : read_node_list();
        end_section(section);
      } else if (section == "$Elements") {
        version_ == Version::v41 ? read_element_blocks() : read_element_list();
        end_section(section);
      } else {
        skip_section(section);
      }
    }
    keep_highest_dimension();
    check_is_flat();
    return std::move(mesh_);
  }

 private:
  enum class Version { v22, v41 };

  void read_format() {
    if (!lines_.next() || lines_.field() != "$MeshFormat") {
      lines_.fail("not a Gmsh mesh: the first line has to be $MeshFormat");
    }
    lines_.require("the version of the format");
    const std::string version(lines_.field());
    const long long is_binary = lines_.count("the file type");
    lines_.count("the data size");
    lines_.end();
    if (version != "4.1" && version != "2.2") {
      lines_.fail("version " + Lines::quoted(version) + " of the format; 4.1 and 2.2 are read");
    }
    if (is_binary != 0) lines_.fail("a binary mesh; only Gmsh's text format is read");
    version_ = version == "4.1" ? Version::v41 : Version::v22;
    end_section("$MeshFormat");
  }

  void end_section(std::string const& section) {
    const std::string end = "$End" + section.substr(1);
    lines_.require(end);
    lines_.word(end);
  }

  void skip_section(std::string const& section) {
    const std::string end = "$End" + section.substr(1);
    do {
      lines_.require(end);
    } while (lines_.field() != end);
  }

  // $Nodes of 4.1: blocks of tags, then as many coordinates.
  void read_node_blocks() {
    lines_.require("the number of node blocks");
    const long long blocks = lines_.count("the number of node blocks");
    long long left = lines_.count("the number of nodes");
    for (long long block = 0; block < blocks; ++block) {
      lines_.require("a node block");
      lines_.count("the entity dimension");
      lines_.whole("the entity tag");
      const bool is_parametric = lines_.count("the parametric mark") != 0;
      const long long nodes = block_size(left, "nodes");
      const std::size_t first = mesh_.nodes.size();
      for (long long i = 0; i < nodes; ++i) {
        lines_.require("a node tag");
        add_node_tag(first + static_cast<std::size_t>(i));
        lines_.end();
      }
      for (long long i = 0; i < nodes; ++i) {
        lines_.require("a node's place");
        add_node();
        if (!is_parametric) lines_.end();
      }
    }
    all_must_be_there(left, "nodes");
  }

  // $Nodes of 2.2: tag and coordinates, line by line.
  void read_node_list() {
    lines_.require("the number of nodes");
    const long long nodes = lines_.count("the number of nodes");
    lines_.end();
    for (long long i = 0; i < nodes; ++i) {
      lines_.require("a node");
      add_node_tag(mesh_.nodes.size());
      add_node();
      lines_.end();
    }
  }

  void add_node_tag(std::size_t index) {
    const long long tag = lines_.count("the node tag", 1);
    if (!index_of_tag_.emplace(tag, index).second) lines_.fail("node " + std::to_string(tag) + " stands here again");
  }

  void add_node() {
    const double x = lines_.coordinate();
    const double y = lines_.coordinate();
    const double z = lines_.coordinate();
    mesh_.nodes.push_back({x, y, z});
  }

  // $Elements of 4.1: blocks of one type each.
  void read_element_blocks() {
    lines_.require("the number of element blocks");
    const long long blocks = lines_.count("the number of element blocks");
    long long left = lines_.count("the number of elements");
    for (long long block = 0; block < blocks; ++block) {
      lines_.require("an element block");
      lines_.count("the entity dimension");
      lines_.whole("the entity tag");
      const ElementKind* kind = element_kind();
      const long long elements = block_size(left, "elements");
      for (long long i = 0; i < elements; ++i) {
        lines_.require("an element");
        lines_.count("the element tag", 1);
        add_element(kind);
      }
    }
    all_must_be_there(left, "elements");
  }

  // $Elements of 2.2: tag, type, number of further tags, these tags, nodes.
  void read_element_list() {
    lines_.require("the number of elements");
    const long long elements = lines_.count("the number of elements");
    lines_.end();
    for (long long i = 0; i < elements; ++i) {
      lines_.require("an element");
      lines_.count("the element tag", 1);
      const ElementKind* kind = element_kind();
      const long long tags = lines_.count("the number of tags");
      for (long long tag = 0; tag < tags; ++tag) lines_.whole("a tag");
      add_element(kind);
    }
  }

  const ElementKind* element_kind() {
    const long long type = lines_.count("the element type", 1);
    const ElementKind* kind = find_kind(type);
    if (kind == nullptr) lines_.fail("talvo has no element of Gmsh's type " + std::to_string(type));
    return kind;
  }

  void add_element(const ElementKind* kind) {
    Element element{kind, {}, lines_.number()};
    for (std::size_t i = 0; i < kind->nodes; ++i) {
      const long long tag = lines_.count("a node of the element", 1);
      const auto found = index_of_tag_.find(tag);
      if (found == index_of_tag_.end()) lines_.fail("no node " + std::to_string(tag) + " stands above this element");
      element.nodes[i] = found->second;
    }
    lines_.end();
    mesh_.elements.push_back(element);
  }

  /// The size of a block, the last field of its head; what is left to come shrinks by it.
  long long block_size(long long& left, const char* what) {
    const long long size = lines_.count("the size of the block");
    lines_.end();
    if (size > left) {
      lines_.fail("a block of " + std::to_string(size) + " " + what + ", but only " + std::to_string(left) +
                  " are left of those announced");
    }
    left -= size;
    return size;
  }

  void all_must_be_there(long long left, const char* what) const {
    if (left != 0) lines_.fail(std::to_string(left) + " of the " + what + " announced are not in any block");
  }

  void keep_highest_dimension() {
    for (Element const& element : mesh_.elements) mesh_.dimension = std::max(mesh_.dimension, element.kind->dimension);
    if (mesh_.dimension < 2) lines_.fail("the file ends without a plane or solid element");
    std::erase_if(mesh_.elements, [this](Element const& e) { return e.kind->dimension < mesh_.dimension; });
  }

  void check_is_flat() const {
    if (mesh_.dimension != 2) return;
    const double z = mesh_.nodes[mesh_.elements.front().nodes[0]].z;
    for (Element const& element : mesh_.elements) {
      for (std::size_t i = 0; i < element.kind->nodes; ++i) {
        if (std::fabs(mesh_.nodes[element.nodes[i]].z - z) > flatness) {
          throw MeshError(mesh_.file, element.line, "the plane mesh does not lie in one plane z = constant");
        }
      }
    }
  }

  static constexpr double flatness = 1e-9;  // greatest difference of z, in hole radii

  Lines lines_;
  Version version_ = Version::v41;
  Mesh mesh_;
  std::unordered_map<long long, std::size_t> index_of_tag_;
};

}  // namespace

Mesh read_mesh(std::string const& file) { return MeshFile(file).read(); }

}  // namespace plate
