// A parameter's value over time, by the same arithmetic as the host's ParameterCurve.cpp, so that what the
// page draws is what is rendered.
//
//   value
//     70 |              ,--x        linear into key 24, from there on held
//        |           ,-'
//     20 |   x__,,--'              smooth out of key 1: it starts off level
//        +---1-----------24--- frame
import { colourText, coloursOf } from './colour';
import { isKeys } from './session';
import type { Curve, Key, KeyKind, Value } from './session';

// How far the value has come from one key to the next, 0 to 1, at `t` of the way in time.
function progress(t: number, from: KeyKind, to: KeyKind): number {
  if (from === 'hold') return 0;
  if (from === 'linear' && to !== 'smooth') return t;
  const startSlope = from === 'smooth' ? 0 : 1;
  const endSlope = to === 'smooth' ? 0 : 1;
  const rest = 1 - t;
  const cubic = t * t * (3 - 2 * t) + startSlope * t * rest * rest - endSlope * t * t * rest;
  return Math.min(Math.max(cubic, 0), 1);
}

function between(a: number, b: number, share: number): number {
  return Math.min(Math.max(a + (b - a) * share, Math.min(a, b)), Math.max(a, b));
}

function mix(a: Value, b: Value, share: number): Value {
  if (typeof a === 'number' && typeof b === 'number') return between(a, b, share);
  if (Array.isArray(a) && Array.isArray(b)) return a.map((part, i) => between(part, b[i] ?? part, share));
  if (typeof a === 'string' && typeof b === 'string') {
    const from = coloursOf(a);
    const to = coloursOf(b);
    if (from && to) return colourText(from.map((part, i) => between(part, to[i] ?? part, share)));
  }
  return a;
}

export function valueAt(curve: Curve, frame: number): Value {
  if (!isKeys(curve)) return curve;
  const next = curve.findIndex((key) => key.frame > frame);
  const from = curve[next < 0 ? curve.length - 1 : Math.max(next - 1, 0)] as Key;
  const to = curve[next];
  if (!to || next === 0) return from.value;
  return mix(from.value, to.value, progress((frame - from.frame) / (to.frame - from.frame), from.key, to.key));
}

export function keysOf(curve: Curve): readonly Key[] {
  return isKeys(curve) ? curve : [];
}

export function keyAt(curve: Curve, frame: number): Key | undefined {
  return keysOf(curve).find((key) => key.frame === frame);
}

// The curve with this value at the frame: another constant, or a key there.
export function withValue(curve: Curve, frame: number, value: Value): Curve {
  return isKeys(curve) ? withKey(curve, frame, value) : value;
}

// The curve with a key at the frame. A new key is of the kind of the one before it, or `kind`.
export function withKey(curve: Curve, frame: number, value: Value, kind?: KeyKind): readonly Key[] {
  const keys = keysOf(curve);
  const before = keys.filter((key) => key.frame <= frame).at(-1) ?? keys[0];
  const key = { frame, value, key: kind ?? before?.key ?? 'linear' } as const;
  return [...keys.filter((other) => other.frame !== frame), key].sort((a, b) => a.frame - b.frame);
}

// Without its last key the curve is the value that key had.
export function withoutKey(curve: Curve, frame: number): Curve {
  const key = keyAt(curve, frame);
  if (!key) return curve;
  const rest = keysOf(curve).filter((other) => other.frame !== frame);
  return rest.length > 0 ? rest : key.value;
}

// A key moved onto another takes its place.
export function withMovedKey(curve: Curve, from: number, frame: number, value: Value): Curve {
  const key = keyAt(curve, from);
  if (!key) return curve;
  const rest = keysOf(curve).filter((other) => other.frame !== from && other.frame !== frame);
  return [...rest, { ...key, frame, value }].sort((a, b) => a.frame - b.frame);
}

export function withKind(curve: Curve, frame: number, kind: KeyKind): Curve {
  const key = keyAt(curve, frame);
  return key ? withKey(curve, frame, key.value, kind) : curve;
}
