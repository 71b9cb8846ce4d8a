// Where frames and values lie in the curve editor.
import { clamped } from '../model/number';
import { isKeys } from '../model/session';
import type { Curve, Parameter, Value } from '../model/session';

export const margin = 6; // half the thumb of the frame's slider, so that the two agree
const top = 8;

// The numbers of a value that are drawn, one line each: items of popups by their place, no line for colours.
export function numbersOf(parameter: Parameter, value: Value): readonly number[] {
  if (typeof value === 'number') return [value];
  if (typeof value === 'boolean') return [value ? 1 : 0];
  if (typeof value !== 'string') return value;
  const item = parameter.items?.indexOf(value) ?? -1;
  return [Math.max(item, 0)];
}

export class CurveScale {
  private readonly least: number;
  private readonly most: number;

  constructor(
    private readonly width: number,
    private readonly height: number,
    private readonly first: number,
    private readonly last: number,
    parameter: Parameter,
    curve: Curve,
  ) {
    const values = (isKeys(curve) ? curve.map(({ value }) => value) : [curve]).flatMap((value) =>
      numbersOf(parameter, value),
    );
    const isCheck = parameter.type === 'checkbox';
    const items = parameter.type === 'popup' ? (parameter.items?.length ?? 1) - 1 : null;
    this.least = Math.min(parameter.sliderMinimum ?? (items === null && !isCheck ? (values[0] ?? 0) - 1 : 0), ...values);
    this.most = Math.max(
      parameter.sliderMaximum ?? items ?? (isCheck ? 1 : (values[0] ?? 0) + 1),
      ...values,
      this.least + 1e-6,
    );
  }

  x(frame: number): number {
    const share = this.last > this.first ? (frame - this.first) / (this.last - this.first) : 0.5;
    return margin + share * (this.width - 2 * margin);
  }

  y(value: number): number {
    return top + (1 - (value - this.least) / (this.most - this.least)) * (this.height - 2 * top);
  }

  frame(x: number): number {
    const share = clamped((x - margin) / Math.max(this.width - 2 * margin, 1), 0, 1);
    return Math.round(this.first + share * (this.last - this.first));
  }

  value(y: number): number {
    const share = 1 - (y - top) / Math.max(this.height - 2 * top, 1);
    return this.least + clamped(share, 0, 1) * (this.most - this.least);
  }

  // Values worth a line across, from the least to the greatest.
  get ticks(): readonly number[] {
    return [0, 0.25, 0.5, 0.75, 1].map((share) => this.least + share * (this.most - this.least));
  }
}
