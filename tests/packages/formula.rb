# Does with a formula what Homebrew does with this one: ruby formula.rb FORMULA FOLDER NAME... builds and
# installs its sources into FOLDER/prefix, and runs its test. NAMEs are what it has to depend on.
require "digest"
require "fileutils"

class Formula
  class << self
    attr_reader :address, :hash, :dependencies, :check

    def desc(text) = nil
    def url(text) = @address = text
    def sha256(text) = @hash = text
    def depends_on(name) = (@dependencies ||= []) << (name.is_a?(Hash) ? name.keys.first : name)
    def uses_from_macos(name) = depends_on(name)
    def test(&block) = @check = block
  end

  def initialize(prefix) = @prefix = prefix
  def bin = "#{@prefix}/bin"
  def version = self.class.address[/-(\d+(?:\.\d+)+)\.tar\.gz$/, 1]
  def std_cmake_args = ["-DCMAKE_INSTALL_PREFIX=#{@prefix}", "-DCMAKE_BUILD_TYPE=Release"]
  def system(*command) = Kernel.system(*command, out: File::NULL) || abort("#{command.join(" ")} failed")
  def shell_output(command) = `#{command}`
  def assert_match(expected, text) = text.include?(expected) || abort("no #{expected} in #{text}")
end

file, folder, *needed = ARGV
load file
archive = CorvaneMcp.address.delete_prefix("file://")
abort "#{archive} has another hash" unless Digest::SHA256.file(archive).hexdigest == CorvaneMcp.hash
named = CorvaneMcp.dependencies
abort "depends on #{named - needed}, which nobody needs, and not on #{needed - named}" if named.sort != needed.sort

FileUtils.mkdir_p(folder)
Kernel.system("tar", "-xzf", archive, "-C", folder, "--strip-components=1") || abort
Dir.chdir(folder)
formula = CorvaneMcp.new("#{folder}/prefix")
formula.install
formula.instance_eval(&CorvaneMcp.check)
