#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

namespace plate::test {

/// A file that is there for as long as the object lives.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string const& text) {
    static int count = 0;
    name_ = testing::TempDir() + "plate_" + std::to_string(getpid()) + "_" + std::to_string(++count) + ".msh";
    std::ofstream(name_, std::ios::binary) << text;
  }
  TemporaryFile(TemporaryFile const&) = delete;
  TemporaryFile& operator=(TemporaryFile const&) = delete;
  ~TemporaryFile() { std::remove(name_.c_str()); }

  std::string const& name() const { return name_; }

 private:
  std::string name_;
};

/// A mesh of one block of elements in the format 4.1. `nodes` are lines of coordinates, numbered from 1; `elements` are
/// lines of an element number and its nodes.
inline std::string mesh_text(int gmsh_type, int node_count, std::string const& nodes, int element_count,
                             std::string const& elements) {
  std::string text = "$MeshFormat\n4.1 0 8\n$EndMeshFormat\n$Nodes\n";
  text += "1 " + std::to_string(node_count) + " 1 " + std::to_string(node_count) + "\n";
  text += "2 1 0 " + std::to_string(node_count) + "\n";
  for (int i = 1; i <= node_count; ++i) text += std::to_string(i) + "\n";
  text += nodes + "$EndNodes\n$Elements\n";
  text += "1 " + std::to_string(element_count) + " 1 " + std::to_string(element_count) + "\n";
  text += "2 1 " + std::to_string(gmsh_type) + " " + std::to_string(element_count) + "\n";
  return text + elements + "$EndElements\n";
}

}  // namespace plate::test
