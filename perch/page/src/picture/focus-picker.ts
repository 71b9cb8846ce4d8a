// Click to focus: the layer's value at a pixel becomes the parameter's; and the read-out of that pixel.
import { focusParameters, spanning } from '../model/focus';
import type { PixelAnswer } from '../model/session';
import type { Store } from '../model/store';
import type { Place } from '../model/zoom';
import { clamped, rounded } from '../model/number';
import type { Api } from '../server/api';

const samplesOfSpan = 9;

export class FocusPicker {
  // The parameter that a click sets; for any effect another may be chosen.
  target: string | null;

  constructor(private readonly api: Api, private readonly store: Store, private readonly serial: () => number) {
    this.target = focusParameters(store.session)?.point ?? null;
  }

  read({ x, y }: Place): Promise<PixelAnswer> {
    return this.api.pixel(this.serial(), x, y);
  }

  async pick(at: Place): Promise<void> {
    const parameter = this.target === null ? undefined : this.store.parameter(this.target);
    if (!parameter) return;
    if (parameter.type === 'point') {
      this.store.setValue(parameter.key, [at.x, at.y]);
      return;
    }
    const value = this.valueOf(await this.read(at));
    if (value !== null) this.store.setValue(parameter.key, value);
  }

  // Makes everything between near and far sharp: the values along the line from one to the other.
  async pickSpan(from: Place, to: Place): Promise<void> {
    const focus = focusParameters(this.store.session);
    if (!focus?.range) return;
    const along = Array.from({ length: samplesOfSpan }, (_, i) => i / (samplesOfSpan - 1));
    const answers = await Promise.all(
      along.map((share) =>
        this.read({
          x: Math.round(from.x + (to.x - from.x) * share),
          y: Math.round(from.y + (to.y - from.y) * share),
        }),
      ),
    );
    const values = answers.map(({ value }) => value).filter((value): value is number => value !== null);
    if (values.length === 0) return;
    const { point, range } = spanning(values);
    this.store.setValues({ [focus.point]: this.held(focus.point, point), [focus.range]: this.held(focus.range, range) });
  }

  private valueOf(pixel: PixelAnswer): number | null {
    const target = this.target as string;
    if (target === focusParameters(this.store.session)?.point) return pixel.value;
    const { sliderMinimum, sliderMaximum, minimum = 0, maximum = 100 } = this.store.parameter(target) ?? {};
    const least = sliderMinimum ?? minimum;
    const most = sliderMaximum ?? maximum;
    const code = (pixel.layer ?? pixel.source)[0] ?? 0;
    return this.held(target, least + ((most - least) * code) / (2 ** pixel.depth - 1));
  }

  // Within the parameter's range, to a digit more than it shows.
  private held(name: string, value: number): number {
    const { minimum = -Infinity, maximum = Infinity, precision = 0 } = this.store.parameter(name) ?? {};
    return clamped(rounded(value, precision + 1), minimum, maximum);
  }
}
