# Prints what a repository's Ruby files depend on: "source<TAB>target" lines. Constants are found
# with Ruby's own parser and led to files as an autoloader does it, by the path that a name makes
# below app/*, lib and their concerns; requires by the load path. Knows nothing of the index.

require "ripper"
require "set"

repo = ARGV[0].chomp("/")
files = IO.popen(["git", "-C", repo, "ls-files", "-z"], &:read).split("\0")
KNOWN = files.to_set
FOLDERS = KNOWN.flat_map { |f| (d = File.dirname(f)).split("/").each_index.map { |i| d.split("/")[0..i].join("/") } }.to_set
RUBY = files.grep(/\.(rb|rake|gemspec|ru)\z|(\A|\/)(Gemfile|Rakefile)\z/).reject { |f| File.symlink?("#{repo}/#{f}") }

def underscore(name)
  name.gsub("::", "/").gsub(/([A-Z]+)([A-Z][a-z])/, '\1_\2').gsub(/([a-z\d])([A-Z])/, '\1_\2').downcase
end

ROOTS = RUBY.filter_map { |f| f[%r{\A((.*/)?(app/[^/]+(/concerns)?|lib|extras))/}, 1] }.uniq.sort
BY_NAME = Hash.new { |h, name| h[name] = ROOTS.map { |r| "#{r}/#{underscore(name)}.rb" }.find { |p| KNOWN.include?(p) } }

def name_of(node)
  case node[0]
  when :var_ref, :const_ref, :top_const_ref, :var_field, :top_const_field then node[1][0] == :@const ? node[1][1] : nil
  when :const_path_ref, :const_path_field then (base = name_of(node[1])) && "#{base}::#{node[2][1]}"
  end
end

def locate(name, scope)
  (scope.length).downto(0) do |n|
    prefix = scope.first(n).join("::")
    first = name.split("::").first
    whole = [prefix, first].reject(&:empty?).join("::")
    next unless BY_NAME[whole] || ROOTS.any? { |r| FOLDERS.include?("#{r}/#{underscore(whole)}") }
    parts = name.split("::")
    parts.length.downto(1) { |k| (f = BY_NAME[[prefix, *parts.first(k)].reject(&:empty?).join("::")]) and return f }
    return nil
  end
  nil
end

def walk(node, scope, uses)
  return unless node.is_a?(Array)
  case node[0]
  when :class, :module
    name = name_of(node[1])
    walk(node[2], scope, uses) if node[0] == :class && node[2]
    return walk(node.last, name ? scope + name.split("::") : scope, uses)
  when :var_ref, :const_path_ref, :top_const_ref
    name = name_of(node)
    return uses << [name, scope] if name
  end
  node.each { |child| walk(child, scope, uses) if child.is_a?(Array) }
end

RUBY.each do |file|
  text = File.binread("#{repo}/#{file}").force_encoding("UTF-8")
  tree = Ripper.sexp(text)
  (warn "skipped\t#{file}"; next) unless tree
  targets = Set.new
  uses = Set.new
  walk(tree, [], uses)
  uses.each { |name, scope| (f = locate(name, scope)) and targets << f }
  text.scan(/^\s*require_relative\s*\(?\s*["']([^"'#]+)["']/) do |path,|
    whole = File.expand_path("/#{File.dirname(file)}/#{path}")[1..] 
    targets << (KNOWN.include?("#{whole}.rb") ? "#{whole}.rb" : whole) if KNOWN.include?("#{whole}.rb") || KNOWN.include?(whole)
  end
  text.scan(/^\s*require\s*\(?\s*["']([^"'#]+)["']/) do |path,|
    folder = File.dirname(file)
    loop do
      hit = %w[lib test spec].map { |l| File.join(folder == "." ? l : "#{folder}/#{l}", "#{path}.rb") }.find { |p| KNOWN.include?(p) }
      (targets << hit; break) if hit
      break if folder == "."
      folder = File.dirname(folder)
    end
  end
  targets.delete(file)
  targets.sort.each { |t| puts "#{file}\t#{t}" }
end
