class CorvaneMcp < Formula
  desc "Model Context Protocol server that has Corvane.app test mobile apps"
  url "@URL@"
  sha256 "@SHA256@"

  depends_on "asio" => :build
  depends_on "cli11" => :build
  depends_on "cmake" => :build
  depends_on "ninja" => :build
  depends_on "pkgconf" => :build
  depends_on "tomlplusplus" => :build
  depends_on "jpeg-turbo"
  depends_on "libpng"
  depends_on "pango"
  depends_on "pugixml"
  depends_on "simdjson"
  depends_on "utf8proc"

  uses_from_macos "zlib"

  def install
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja",
           "-DCORVANE_HARDENED=ON", "-DCORVANE_TESTS=OFF", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  test do
    assert_match version.to_s, shell_output("#{bin}/corvanectl --version")
  end
end
