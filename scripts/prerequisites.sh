# Installs from Debian's packages what the build needs when it is missing:
# CMake, Ninja, RapidJSON, and any extra PACKAGE:FILE pairs given (the package
# is installed when FILE does not exist). Sourced by the other scripts:
#   source scripts/prerequisites.sh [PACKAGE:FILE ...]
need=()
command -v cmake >/dev/null || need+=(cmake)
command -v ninja >/dev/null || need+=(ninja-build)
[ -f /usr/include/rapidjson/reader.h ] || need+=(rapidjson-dev)
for wanted in "$@"; do
  case $wanted in
    *:*) [ -e "${wanted#*:}" ] || need+=("${wanted%%:*}") ;;
  esac
done
if [ ${#need[@]} -gt 0 ]; then
  sudo=()
  [ "$(id -u)" -ne 0 ] && sudo=(sudo)
  "${sudo[@]}" apt-get update && "${sudo[@]}" apt-get install -y "${need[@]}"
fi
