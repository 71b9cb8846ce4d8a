// Which of the effect's parameters make up its focus, and the band of layer values that they keep sharp.
import type { Session } from './session';
import { clamped } from './number';

// Their keys.
export interface FocusParameters {
  readonly point: string;
  readonly range: string | null;
  readonly invert: string | null;
}

export interface Band {
  readonly from: number; // 0 to 1, codes of the layer
  readonly to: number;
}

export function focusParameters(session: Session): FocusParameters | null {
  if (!session.pick) return null;
  const named = (name: string, type: string) =>
    session.parameters.find((parameter) => parameter.name === name && parameter.type === type)?.key ?? null;
  const point = named(session.pick.parameter, 'slider');
  if (point === null) return null;
  return {
    point,
    range: named('In-focus Range', 'slider'),
    invert: named('Invert Control', 'checkbox'),
  };
}

// Whether the effect can show what is in focus.
export function hasFocusView(session: Session): boolean {
  return session.parameters.some(({ type, items }) => type === 'popup' && items?.includes('Focus'));
}

export function bandOf(point: number, range: number, isInverted: boolean): Band {
  const centre = (isInverted ? 100 - point : point) / 100;
  return { from: clamped(centre - range / 100, 0, 1), to: clamped(centre + range / 100, 0, 1) };
}

// The point and range, in per cent, that keep all of these values sharp.
export function spanning(values: readonly number[]): { readonly point: number; readonly range: number } {
  const least = Math.min(...values);
  const most = Math.max(...values);
  return { point: (least + most) / 2, range: (most - least) / 2 };
}
