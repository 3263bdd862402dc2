# TRST ON ;
puts "--- line 2"
# TRST OFF ; puts "--- line 2"
# TRST Z ;
puts "--- line 4"
puts "--- line 6"
# TRST ON ;
