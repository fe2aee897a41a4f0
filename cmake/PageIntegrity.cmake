# The hash by which a page's security policy names a style or script: SHA-256 in base64.
function(corvane_page_hash result text)
  string(SHA256 hex "${text}")
  set(letters "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(base64 "")
  # Three bytes make four letters; a thirty-third byte fills the last group, whose last letter then is
  # the padding.
  foreach(at RANGE 0 60 6)
    string(SUBSTRING "${hex}00" ${at} 6 group)
    foreach(shift 18 12 6 0)
      math(EXPR index "(0x${group} >> ${shift}) & 63")
      string(SUBSTRING "${letters}" ${index} 1 letter)
      string(APPEND base64 "${letter}")
    endforeach()
  endforeach()
  string(SUBSTRING "${base64}" 0 43 base64)
  set(${result} "${base64}=" PARENT_SCOPE)
endfunction()
