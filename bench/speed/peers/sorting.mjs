/** JSON.stringify keeps the order in which members were set, so a copy is made in key order. */
export function sorted(value) {
  if (Array.isArray(value)) return value.map(sorted);
  if (value === null || typeof value !== "object") return value;
  const copy = {};
  for (const key of Object.keys(value).sort()) copy[key] = sorted(value[key]);
  return copy;
}
